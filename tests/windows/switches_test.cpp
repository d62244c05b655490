#include "tests/windows/tool_fixture.h"

namespace windows_test {
namespace {

class SwitchTest : public ToolTest {
 protected:
  // What must happen has happened by now, and nothing else.
  void ExpectNothingMore(const Where& where = Where::current()) {
    AwaitLine(where);
    Observer().ExpectNothing(where);
  }
  void HoldLeftButton(const Where& where = Where::current()) {
    Set("Sw1CmdVal", -1, where);
    StartQuietTool(where);
    Line().SendText("Sw1Make", where);
    Observer().Expect("mouse left down", where);
  }
};

TEST_F(SwitchTest, SwitchesClick) {
  Set("Sw1CmdVal", -1);
  Set("Sw2CmdVal", -2);
  StartQuietTool();
  Line().SendRaw("55 55 0A 53 77 31 4D 61 6B 65 7D 04");  // Sw1Make
  Observer().Expect("mouse left down");
  ExpectNothingMore();
  Line().SendText("sw1break");  // in whatever case
  Observer().Expect("mouse left up");
  Line().SendText("Sw2Make");
  Observer().Expect("mouse right down");
  Line().SendText("Sw2Break");
  Observer().Expect("mouse right up");
  Line().SendText("Sw1Make ");
  ExpectNothingMore();
  Line().ExpectNothing();
}

TEST_F(SwitchTest, SwitchesTypeKeys) {
  Set("Sw1CmdVal", 65);
  Set("Sw2CmdVal", 32);
  StartQuietTool();
  Line().SendText("Sw1Make");
  Observer().Expect("key 65 down");
  Line().SendText("Sw2Make");
  Observer().Expect("key 32 down");
  Line().SendText("Sw1Break");
  Observer().Expect("key 65 up");
  Line().SendText("Sw2Break");
  Observer().Expect("key 32 up");
  ExpectNothingMore();
}

TEST_F(SwitchTest, EveryProgramHearsOfPressesThatHaveNoCommand) {
  StartQuietTool();
  const std::pair<std::string, std::string> sources[] = {
      {"Sw1", "1"}, {"Sw2", "2"}, {"Esc", "3"}, {"Fn1", "4"}, {"Fn2", "5"}};
  for (const auto& [name, number] : sources) {
    Line().SendText(name + "Make");
    Observer().Expect("switch-input Veltra Observer " + number + " 1");
    Line().SendText(name + "Break");
    Observer().Expect("switch-input Veltra Observer " + number + " 0");
  }
  ExpectNothingMore();
}

TEST_F(SwitchTest, AHeldMiddleButtonIsTheEscapeKey) {
  StartQuietTool();
  Line().SendText("EscMake");
  Observer().Expect("switch-input Veltra Observer 3 1");
  Observer().Expect("key 27 down");
  Observer().Expect("key 27 up");
  Line().SendText("EscBreak");
  Observer().Expect("switch-input Veltra Observer 3 0");
  ExpectNothingMore();
}

TEST_F(SwitchTest, TheMakersApplicationsComeFirst) {
  Set("Sw1CmdVal", 0);
  Set("Sw2CmdVal", -2);
  Set("LexoraRevSw", 1);
  Set("TB4RevSw", 1);
  StartQuietTool();
  Observer().OpenWindow("Talk Builder 4 Class");
  Line().SendText("Sw1Make");
  Observer().Expect("switch-input Talk Builder 4 Class 2 1");
  Line().SendText("Sw1Break");
  Observer().Expect("switch-input Talk Builder 4 Class 2 0");
  Line().SendText("Sw2Make");
  Observer().Expect("mouse right down");
  Line().SendText("Sw2Break");
  Observer().Expect("mouse right up");

  Observer().OpenWindow("Lexora");
  const std::pair<std::string, std::string> swapped[] = {
      {"Sw1Make", "74"}, {"Sw1Break", "106"}, {"Sw2Make", "68"}, {"Sw2Break", "100"}};
  for (const auto& [text, letter] : swapped) {
    Line().SendText(text);
    Observer().Expect("message Lexora 32868 0 " + letter);
  }
  Observer().OpenWindow("Talk Builder");
  Line().SendText("Sw1Make");
  Observer().Expect("message Talk Builder 32868 0 68");
  Line().SendText("Sw1Break");
  Observer().Expect("message Talk Builder 32868 0 100");
  ExpectNothingMore();
}

TEST_F(SwitchTest, NothingStaysPressedWhenThePortIsRemoved) {
  HoldLeftButton();
  Observer().AnnouncePort(kMainWindow, false, "COM2");
  Observer().Expect("mouse left up");
  Observer().AnnouncePort(kMainWindow, true, "COM2");
  Line().SendText("Sw1Break");  // the release comes late
  ExpectNothingMore();
}

TEST_F(SwitchTest, NothingStaysPressedWhenTheLineVanishes) {
  GTEST_SKIP() << kWineWaitsForEver;
  HoldLeftButton();
  PullLine();
  Observer().Expect("mouse left up");
  AwaitLogLine("Pic port lost without notice");
}

TEST_F(SwitchTest, NothingStaysPressedWhenTheTabletSuspends) {
  HoldLeftButton();
  EXPECT_EQ(SendTool(kPowerBroadcast, kSuspend), 1);
  Observer().Expect("mouse left up");
  Line().SendText("Sw1Break");
  ExpectNothingMore();
}

TEST_F(SwitchTest, NothingStaysPressedWhenTheToolEnds) {
  HoldLeftButton();
  Observer().Post(kMainWindow, kClose);
  Observer().Expect("mouse left up");
  EXPECT_EQ(ExitCode(), 0);
  Observer().ExpectNothing();
}

TEST_F(SwitchTest, NoPressOfABurstIsLost) {
  constexpr int kPresses = 100;
  Set("Sw1CmdVal", -1);
  StartQuietTool();
  for (int i = 0; i < kPresses; ++i) {
    Line().SendText("Sw1Make");
    Line().SendText("Sw1Break");
  }
  for (int i = 0; i < kPresses; ++i) {
    Observer().Expect("mouse left down");
    Observer().Expect("mouse left up");
  }
  ExpectNothingMore();
}

}  // namespace
}  // namespace windows_test
