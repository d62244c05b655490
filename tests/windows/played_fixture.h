// One test of the real program with the simulated controller on its line.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "tests/windows/played_controller.h"
#include "tests/windows/tool_fixture.h"

namespace windows_test {

class PlayedToolTest : public ToolTest {
 protected:
  void SetUp() override {
    ToolTest::SetUp();
    PullLine();
    controller_ = std::make_unique<PlayedController>(LinkPath());
    Set("StartupDelay", 0);
  }
  // Starts it and answers everything that it asks at start.
  void StartPlayed(const Where& where = Where::current()) {
    StartTool({"-s"}, where);
    ServeUntilAsked("GetBatteryDesignVoltage", where);
    Controller().ServeUntilQuiet(where);
    NewRequests();
  }

  PlayedController& Controller() { return *controller_; }
  // The texts that the controller was asked since the last call.
  std::vector<std::string> NewRequests() {
    std::vector<std::string> texts;
    const auto& requests = Controller().Pic().Requests();
    for (; taken_ < requests.size(); ++taken_) texts.push_back(TextOf(requests[taken_]));
    return texts;
  }
  // Serves until that text is among the new ones.
  void ServeUntilAsked(const std::string& text, const Where& where = Where::current()) {
    Controller().ServeUntil(
        text,
        [&] {
          const auto& requests = Controller().Pic().Requests();
          return std::any_of(requests.begin() + static_cast<std::ptrdiff_t>(taken_), requests.end(),
                             [&](const auto& request) { return TextOf(request) == text; });
        },
        where);
  }

 private:
  static std::string TextOf(const simulator::ReceivedRequest& request) {
    return {request.message.begin() + 1, request.message.end()};
  }

  std::unique_ptr<PlayedController> controller_;
  size_t taken_ = 0;
};

}  // namespace windows_test
