// Keeps Windows awake and its session up while the controller is without its firmware.
#pragma once

namespace veltra {

class UpdateGuard {
 public:
  // While on, Windows does not fall asleep by itself, and who ends the session reads why it has to wait.
  // Returns whether that has changed.
  bool Set(bool on);

 private:
  bool on_ = false;
};

}  // namespace veltra
