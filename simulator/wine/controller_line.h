// The simulated controller on the tool's COM2, in wall time.
#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>

#include "simulator/controller.h"
#include "simulator/pseudo_terminal.h"

namespace simulator {

class ControllerLine {
 public:
  explicit ControllerLine(std::filesystem::path link) : link_(std::move(link)) { Plug(); }

  Controller& Pic() { return controller_; }
  [[nodiscard]] Duration Now() const;
  // The line goes, and another one comes.
  void Unplug() {
    terminal_.reset();
    controller_.LoseLine();
  }
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
  std::multimap<Duration, std::function<void()>> due_;
  Controller controller_{{
      [this](std::span<const uint8_t> bytes) { Send(bytes); },
      [this](Duration delay, std::function<void()> action) {
        due_.emplace(Now() + delay, std::move(action));
      },
      [this] { return Now(); },
  }};
};

}  // namespace simulator
