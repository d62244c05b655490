// A descriptor that one thread polls beside a device and another makes readable.
#pragma once

namespace pal {

class WakeDescriptor {
 public:
  WakeDescriptor() = default;
  ~WakeDescriptor();
  WakeDescriptor(const WakeDescriptor&) = delete;
  WakeDescriptor& operator=(const WakeDescriptor&) = delete;

  int Get();     // made at the first use
  void Raise();  // makes it readable
  void Lower();  // takes that back

 private:
  int descriptor_ = -1;
};

}  // namespace pal
