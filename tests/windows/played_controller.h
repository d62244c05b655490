// The simulated controller on the tool's COM2, in wall time. It lives while the test serves it: what it has
// not read yet waits in the line.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <string_view>

#include "simulator/controller.h"
#include "tests/windows/failure.h"
#include "tests/windows/pseudo_terminal.h"

namespace windows_test {

class PlayedController {
 public:
  explicit PlayedController(const std::filesystem::path& link) : terminal_(link) {}

  simulator::Controller& Pic() { return controller_; }

  // Reads, answers, and does what is due by now.
  void Serve();
  // Serves until the condition holds; fails when patience ends.
  void ServeUntil(std::string_view what, const std::function<bool()>& condition,
                  const Where& where = Where::current());
  // Serves until the tool has asked nothing for a while.
  void ServeUntilQuiet(const Where& where = Where::current());

 private:
  [[nodiscard]] simulator::Duration Now() const;
  void Send(std::span<const uint8_t> bytes);

  PseudoTerminal terminal_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::multimap<simulator::Duration, std::function<void()>> due_;
  simulator::Controller controller_{{
      [this](std::span<const uint8_t> bytes) { Send(bytes); },
      [this](simulator::Duration delay, std::function<void()> action) {
        due_.emplace(Now() + delay, std::move(action));
      },
      [this] { return Now(); },
  }};
};

}  // namespace windows_test
