// The device's end of a pseudo terminal that passes for a serial port: raw, with a symbolic link to the other
// end.
#pragma once

#include <filesystem>

#include "tests/windows/file_descriptor.h"

namespace windows_test {

class PseudoTerminal {
 public:
  // Takes the link's place when there is one. Throws std::system_error.
  explicit PseudoTerminal(std::filesystem::path link);
  ~PseudoTerminal();  // hangs up and removes the link
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  // Does not block. Polling it shows POLLHUP while no program has the other end open.
  [[nodiscard]] int Get() const { return terminal_.Get(); }

 private:
  std::filesystem::path link_;
  FileDescriptor terminal_;
};

}  // namespace windows_test
