// The device's end of a pseudo terminal that passes for a serial port: raw, with a symbolic link to the other
// end.
#pragma once

#include <filesystem>
#include <string>

#include "simulator/file_descriptor.h"

namespace simulator {

// As a serial line that passes bytes as they are: 57600 baud, no modem lines. Throws std::system_error.
void MakeRaw(int terminal);

class PseudoTerminal {
 public:
  // Takes the place of an older link, never of a file; no link when it is empty. Throws std::system_error.
  explicit PseudoTerminal(std::filesystem::path link);
  ~PseudoTerminal();  // hangs up and removes the link
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  // Does not block. Polling it shows POLLHUP while no program has the other end open.
  [[nodiscard]] int Get() const { return terminal_.Get(); }
  // Of the other end.
  [[nodiscard]] const std::string& Path() const { return path_; }

 private:
  std::filesystem::path link_;
  std::string path_;
  FileDescriptor terminal_;
};

}  // namespace simulator
