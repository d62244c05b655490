// A tty or pty of the host as the far end of a serial port.
#pragma once

#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace pal {

class TtyLine {
 public:
  // Opens it raw; null when it cannot be opened.
  static std::unique_ptr<TtyLine> Open(const std::filesystem::path& path);
  ~TtyLine();
  TtyLine(const TtyLine&) = delete;
  TtyLine& operator=(const TtyLine&) = delete;

  [[nodiscard]] int Descriptor() const { return descriptor_; }
  // Appends what has arrived without waiting; false when the device is gone.
  bool Read(std::vector<uint8_t>& bytes) const;
  // Waits up to `milliseconds` for room; returns the number of bytes taken, empty when the device is gone.
  [[nodiscard]] std::optional<size_t> Write(std::span<const uint8_t> bytes, int milliseconds) const;
  // False for settings that the line cannot have.
  [[nodiscard]] bool Configure(const DCB& dcb) const;
  void DiscardInput() const;

 private:
  explicit TtyLine(int descriptor) : descriptor_(descriptor) {}

  const int descriptor_;
};

}  // namespace pal
