// The controller's end of COM2, played by the test: it sees every byte that the tool writes, with its time.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "tests/windows/failure.h"
#include "tests/windows/pseudo_terminal.h"

namespace windows_test {

class Line {
 public:
  // Makes a pseudo terminal; the symbolic link leads to it until the line is destroyed.
  explicit Line(const std::filesystem::path& link) : terminal_(link) {}

  // The tool has the port open.
  bool IsOpen();

  // Waits for exactly these bytes, in hexadecimal; fails at the first that differs.
  void Expect(std::string_view bytes, const Where& where = Where::current());
  // Nothing more has arrived. Says something only after the tool has been made to catch up.
  void ExpectNothing(const Where& where = Where::current());
  // The text of the next message, empty when nothing has arrived. Fails when it is badly framed.
  std::string TakeText(const Where& where = Where::current());
  // How long the tool paused between the first two bytes of the latest Expect.
  [[nodiscard]] std::chrono::microseconds PauseBehindFirstByte() const { return pause_; }

  void SendText(std::string_view text, const Where& where = Where::current());
  void SendReply(std::string_view content, const Where& where = Where::current());
  void SendLogLine(std::string_view text, const Where& where = Where::current());
  // Bytes in hexadecimal, as they are.
  void SendRaw(std::string_view bytes, const Where& where = Where::current());

 private:
  using Clock = std::chrono::steady_clock;
  struct Byte {
    uint8_t value;
    Clock::time_point at;
  };
  void ReadWhatIsThere();
  void Send(const std::vector<uint8_t>& bytes, const Where& where);

  PseudoTerminal terminal_;
  std::deque<Byte> received_;  // not taken yet
  std::chrono::microseconds pause_{};
};

}  // namespace windows_test
