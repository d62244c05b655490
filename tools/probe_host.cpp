// The machine of the layer on which the probe stands where there is no Windows. No tool runs on it.
#include "pal/machine/machine.h"

namespace {

const pal::Machine machine;

}  // namespace
