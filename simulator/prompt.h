// Commands from a person on standard input, until the console has ended or the input has.
#pragma once

#include "simulator/console.h"

namespace simulator {

void RunPrompt(Console& console);

}  // namespace simulator
