// What the battery and the radios make Windows do.
#include <algorithm>

#include "tests/windows/tool_fixture.h"

namespace windows_test {
namespace {

class PowerTest : public ToolTest {
 protected:
  static void AwaitBalloon(const std::string& text, const Where& where = Where::current()) {
    WaitUntil(
        "the balloon \"" + text + "\"",
        [&] {
          const std::vector<std::string> balloons = Observer().Balloons(where);
          return std::ranges::find(balloons, text) != balloons.end();
        },
        where);
  }
};

TEST_F(PowerTest, FlightModeIsRememberedAfterTheStart) {
  Set("EnableFlightMode", 1);
  StartQuietTool();
  AwaitBalloon("Flight mode is active");
}

TEST_F(PowerTest, TheLowBatteryIsTold) {
  Set("CurrentLangID", 1043);
  StartQuietTool();
  Line().SendText("BatteryState=0x0A");
  AwaitBalloon("Batterijniveau is laag. Toestel moet opgeladen worden.");
}

// The check comes within three seconds, the power-off four seconds behind it. Wine shows a balloon when it is
// two seconds old.
TEST_F(PowerTest, TheCriticalLevelEndsTheWindowsSession) {
  StartQuietTool();
  const auto reported = std::chrono::steady_clock::now();
  Line().SendText("BatteryState=0x05");
  AwaitBalloon("Battery level is critical. System will shutdown.");
  EXPECT_EQ(ExitCode(), 0);
  WaitUntil("the session has ended", [] { return Observer().HasEnded(); });
  const auto lasted = std::chrono::steady_clock::now() - reported;
  EXPECT_GE(lasted, std::chrono::seconds(4));
  EXPECT_LE(lasted, std::chrono::seconds(10));  // a second attempt comes seven seconds later
  RestartSession();
}

}  // namespace
}  // namespace windows_test
