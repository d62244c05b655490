#include "pal/devices/wake_descriptor.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>

#include "pal/machine/die.h"

namespace pal {

WakeDescriptor::~WakeDescriptor() {
  if (descriptor_ >= 0) close(descriptor_);
}

int WakeDescriptor::Get() {
  if (descriptor_ < 0) descriptor_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  if (descriptor_ < 0) Die("no event descriptor to be had");
  return descriptor_;
}

void WakeDescriptor::Raise() {
  const uint64_t one = 1;
  if (write(Get(), &one, sizeof(one)) < 0) Die("cannot wake a thread");
}

void WakeDescriptor::Lower() {
  uint64_t count = 0;
  static_cast<void>(!read(Get(), &count, sizeof(count)));  // nothing to read is as good
}

}  // namespace pal
