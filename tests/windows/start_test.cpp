#include <fnmatch.h>

#include <algorithm>

#include "tests/windows/tool_fixture.h"

namespace windows_test {
namespace {

class StartTest : public ToolTest {};

TEST_F(StartTest, TheFirstStartStoresTheNineteenDefaultsAndNothingElse) {
  const std::map<std::string, std::string> defaults = {
      {"AllowEscape", "number:1"},        {"BattCrit", "number:1"},
      {"BattCritPercentage", "number:5"}, {"BattLow", "number:1"},
      {"BattLowPercentage", "number:10"}, {"CurrentLangID", "number:2057"},
      {"DisableUSBBack", "number:0"},     {"DisableUSBBottom", "number:0"},
      {"EnableBluetooth", "number:1"},    {"EnableFlightMode", "number:0"},
      {"EnableMobilePhone", "number:1"},  {"EnableWLAN", "number:1"},
      {"MicrophoneVol", "number:-1"},     {"SpeakerVol", "number:-1"},
      {"StartupDelay", "number:3000"},    {"Sw1CmdVal", "number:0"},
      {"Sw1Start", "number:0"},           {"Sw2CmdVal", "number:0"},
      {"WakeupDelay", "number:1000"},
  };
  ASSERT_EQ(defaults.size(), 19u);
  StartTool();
  AwaitAnswer();
  EXPECT_EQ(Observer().ReadKey(Root::kUser, kSettingsKey), defaults);
  EXPECT_TRUE(Observer().ReadKey(Root::kMachine, kSettingsKey).empty());
}

TEST_F(StartTest, StoredSettingsAreTakenAsTheyStandAndKept) {
  Set("StartupDelay", 0);
  Set("SwClicks", 1);
  Set("Sw2CmdVal", 65);
  Set("EnableWLAN", 2);
  Observer().SetText(Root::kUser, kSettingsKey, "BattLowPercentage", "20");
  StartTool();
  AwaitAnswer();
  auto stored = Observer().ReadKey(Root::kUser, kSettingsKey);
  EXPECT_EQ(stored["Sw1CmdVal"], "number:-1");
  EXPECT_EQ(stored["Sw2CmdVal"], "number:65");
  EXPECT_EQ(stored["EnableWLAN"], "number:0");
  EXPECT_EQ(stored["BattLowPercentage"], "number:10");
  EXPECT_EQ(stored["SwClicks"], "number:1");
}

TEST_F(StartTest, ASecondStartLeavesWithSixAndTheFirstServesOn) {
  StartQuietTool();
  WineProcess second("veltratool.exe", {"-s"});
  EXPECT_EQ(second.ExitCode(), 6);
  EXPECT_TRUE(IsToolRunning());
  AwaitLine();
}

TEST_F(StartTest, ASecondStartHasTheFirstOpenItsPowerMeter) {
  Observer().HoldMutex("VeltraInternal");  // the observer plays the first
  Observer().OpenWindow(kMainWindow);
  StartTool();
  EXPECT_EQ(ExitCode(), 6);
  Observer().Expect("command VeltraInternal 127");
  EXPECT_FALSE(Line().IsOpen());
  EXPECT_TRUE(Observer().ReadKey(Root::kUser, kSettingsKey).empty());
}

TEST_F(StartTest, HelpShowsItsBoxAndEndsBeforeAnythingIsTouched) {
  const std::vector<std::vector<std::string>> commandLines = {{"-?"}, {"-s", "-v5", "/HELP", "--he"}};
  for (const std::vector<std::string>& arguments : commandLines) {
    StartTool(arguments);
    Dialog("Help").AwaitText("Hoe gebruiken?");
    EXPECT_FALSE(Observer().SeesWindow(kMainWindow));
    EXPECT_FALSE(Line().IsOpen());
    Dialog("Help").PressButton("OK");
    EXPECT_EQ(ExitCode(), 0);
    EXPECT_TRUE(Observer().ReadKey(Root::kUser, kSettingsKey).empty());
  }
}

TEST_F(StartTest, TheControllerIsAskedOneQuestionAtATime) {
  Set("StartupDelay", 0);
  StartTool();
  const std::string_view questions[] = {
      "55 55 0A 52 65 61 64 79 01 04",                                   // Ready
      "55 55 0A 47 65 74 53 65 72 69 61 6C 76 04",                       // GetSerial
      "55 55 0A 47 65 74 50 43 42 53 65 72 69 61 6C A1 04",              // GetPCBSerial
      "55 55 0A 47 65 74 50 43 42 56 65 72 73 69 6F 6E 1B 04",           // GetPCBVersion
      "55 55 0A 47 65 74 54 6F 75 63 68 53 65 72 69 61 6C 73 04",        // GetTouchSerial
      "55 55 0A 47 65 74 54 6F 75 63 68 56 65 72 73 69 6F 6E ED 04",     // GetTouchVersion
      "55 55 0A 47 65 74 54 6F 75 63 68 46 69 72 6D 77 61 72 65 96 04",  // GetTouchFirmware
  };
  std::chrono::microseconds longestPause{};
  for (const std::string_view question : questions) {
    Line().Expect(question);
    longestPause = std::max(longestPause, Line().PauseBehindFirstByte());
    AwaitAnswer();
    Line().SendText("PCBVersion=7");  // a text is no answer
    AwaitLine();
    Line().ExpectNothing();
    Line().SendReply("OK");
  }
  // The first byte goes alone and wakes the controller. A busy machine may show us both parts at once, not
  // each time.
  EXPECT_GE(longestPause, std::chrono::microseconds(4500));
}

TEST_F(StartTest, WithoutThePortItStartsAndSaysSo) {
  PullLine();
  Set("StartupDelay", 0);
  StartTool();
  AwaitLogLine("failed to open port");
  const char* line =
      "[a-l][0-3][0-9] [0-2][0-9][0-5][0-9][0-5][0-9] [0-9] StartPicComm . . .  failed to open port\r\n";
  EXPECT_EQ(fnmatch(line, ReadDataFile("DevLog.txt").c_str(), 0), 0) << ReadDataFile("DevLog.txt");
}

TEST_F(StartTest, TheEndOfTheWindowsSessionIsItsEnd) {
  constexpr uint32_t kEndSession = 0x0016;
  StartQuietTool();
  SendTool(kEndSession, 0);  // the session goes on after all
  AwaitLine();
  Observer().Post(kMainWindow, kEndSession, 1);
  EXPECT_EQ(ExitCode(), 0);
}

}  // namespace
}  // namespace windows_test
