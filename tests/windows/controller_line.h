// The simulated controller on the tool's COM2, in wall time.
#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>

#include "simulator/controller.h"
#include "tests/windows/pseudo_terminal.h"

namespace windows_test {

class ControllerLine {
 public:
  explicit ControllerLine(std::filesystem::path link) : link_(std::move(link)) { Plug(); }

  simulator::Controller& Pic() { return controller_; }
  [[nodiscard]] simulator::Duration Now() const;
  // The line goes, and another one comes.
  void Unplug() { terminal_.reset(); }
  void Plug() { terminal_.emplace(link_); }
  // The tool has the port open.
  [[nodiscard]] bool IsOpen() const;
  // Reads, answers, and does what is due by now.
  void Serve();

 private:
  void Send(std::span<const uint8_t> bytes);

  std::filesystem::path link_;
  std::optional<PseudoTerminal> terminal_;
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
