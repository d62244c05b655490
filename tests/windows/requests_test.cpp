#include "tests/windows/tool_fixture.h"

namespace windows_test {
namespace {

constexpr uint32_t kInfraredRequest = 0;
constexpr uint32_t kInfraredCancel = 3;
constexpr uint32_t kSetPcbSerial = 12345;
constexpr uint32_t kSetSerial = 12346;
constexpr uint32_t kCalibrateTouch = 12350;

class RequestsTest : public ToolTest {};

TEST_F(RequestsTest, IdentificationUpdatesReachTheController) {
  StartQuietTool();
  EXPECT_EQ(Observer().Copy(kMainWindow, kSetSerial, "AB12"), 0);
  Line().Expect("55 55 0A 53 65 74 53 65 72 69 61 6C 3D 41 42 31 32 47 04");  // SetSerial=AB12
  Observer().Copy(kMainWindow, kSetPcbSerial, "U");
  AwaitLine();
  Line().ExpectNothing();  // it waits for its turn
  Line().SendReply({});
  Line().Expect("55 55 0A 53 65 74 50 43 42 53 65 72 69 61 6C 3D 05 55 03 04");  // SetPCBSerial=U
  Line().SendReply({});
  Observer().Copy(kMainWindow, kCalibrateTouch, "1");
  Line().Expect("55 55 0A 43 61 6C 69 62 72 61 74 65 54 6F 75 63 68 31 3B 04");  // CalibrateTouch1
}

TEST_F(RequestsTest, ATooLongIdentificationUpdateIsRefusedWhole) {
  StartQuietTool();
  Observer().Copy(kMainWindow, kCalibrateTouch, std::string(32, 'x'));
  AwaitLine();
  Line().ExpectNothing();
  EXPECT_NE(ReadDataFile("DevLog.txt").find(" >_<    "), std::string::npos);
  Observer().Copy(kMainWindow, kCalibrateTouch, std::string(31, 'x'));
  EXPECT_EQ(Line().TakeText(), "CalibrateTouch" + std::string(31, 'x'));
}

TEST_F(RequestsTest, TheFirmwareQueryComparesWithNinetyFive) {
  StartQuietTool();
  EXPECT_EQ(SendTool(kQueryPicFirmware), 0);
  const std::pair<const char*, int> versions[] = {{"94", 0}, {"95", 1}, {"2", 0}, {"101b", 1}};
  for (const auto& [version, answer] : versions) {
    Line().SendText(std::string("Firmware=") + version);
    AwaitLine();
    EXPECT_EQ(SendTool(kQueryPicFirmware), answer) << version;
  }
}

TEST_F(RequestsTest, EveryQuestionHasItsAnswer) {
  constexpr int64_t kPowerSource = 12, kCapacity = 13, kSpeakerVolume = 20;
  Set("SpeakerVol", 70);
  StartQuietTool();
  for (const char* text : {"AdapterPresent=1", "BatteryPresent=1", "BatteryState=0x40"})
    Line().SendText(text);
  AwaitLine();
  EXPECT_EQ(SendTool(kDeviceToolRequest, kPowerSource), 2);
  EXPECT_EQ(SendTool(kDeviceToolRequest, kCapacity), 64);
  EXPECT_EQ(SendTool(kDeviceToolRequest, kSpeakerVolume), 0x10000 + 70);
  for (const int64_t operation : {int64_t{0}, int64_t{21}, int64_t{-1}, int64_t{0x7FFFFFFF}})
    EXPECT_EQ(SendTool(kDeviceToolRequest, operation, -1), 0) << operation;
  EXPECT_EQ(SendTool(kCodecStatusQuery), 1);
  const std::pair<int64_t, const char*> lights[] = {{3, "SetStatusLed=3"}, {4, "SetStatusLed=0"}};
  for (const auto& [state, text] : lights) {
    EXPECT_EQ(SendTool(kStatusLedRequest, state), 0);
    EXPECT_EQ(Line().TakeText(), text);
    Line().SendReply({});
    AwaitLine();
  }
}

TEST_F(RequestsTest, AProgramThatAsksAndDiesLosesItsReplyOnly) {
  StartQuietTool();
  {
    windows_test::Observer other;
    EXPECT_EQ(other.Copy(kMainWindow, kInfraredRequest, "IRSend=1"), 1);
  }
  EXPECT_EQ(Observer().Copy(kMainWindow, kInfraredRequest, "IRSend=2"), 1);
  EXPECT_EQ(Line().TakeText(), "IRSend=1");
  Line().SendReply("lost");
  AwaitLine();
  EXPECT_EQ(Line().TakeText(), "IRSend=2");
  Line().SendReply("kept");
  Observer().Expect("copied Veltra Observer 0 6B657074 VeltraInternal");
}

TEST_F(RequestsTest, AnInfraredReplyReturnsToTheProgramThatAsked) {
  StartQuietTool();
  EXPECT_EQ(Observer().Copy(kMainWindow, kInfraredRequest, "IRSend"), 1);
  EXPECT_EQ(Observer().Copy(kMainWindow, kInfraredRequest, "IRNext"), 1);
  EXPECT_EQ(Line().TakeText(), "IRSend");
  Line().SendReply("done");
  Observer().Expect("copied Veltra Observer 0 646F6E65 VeltraInternal");
  AwaitLine();
  EXPECT_EQ(Line().TakeText(), "IRNext");
  EXPECT_EQ(Observer().Copy(kMainWindow, kInfraredCancel, "IRStop"),
            1);  // drops what waits, goes out at once
  EXPECT_EQ(Line().TakeText(), "IRStop");
  Line().SendReply("off");
  Observer().Expect("copied Veltra Observer 0 6F6666 VeltraInternal");
  AwaitLine();
  Line().ExpectNothing();
}

TEST_F(RequestsTest, CloseEndsTheToolWithZero) {
  StartQuietTool();
  EXPECT_EQ(SendTool(kClose), 0);
  EXPECT_EQ(ExitCode(), 0);
  EXPECT_FALSE(Line().IsOpen());
}

TEST_F(RequestsTest, TheCloseCommandAsksFirstInTheUsersLanguage) {
  constexpr int64_t kCloseTool = 128;
  constexpr int64_t kChooseDutch = 40213;
  const std::string caption = "Sarvik5";
  StartQuietTool();
  Observer().Post(kMainWindow, kCommand, kCloseTool);
  Dialog(caption).AwaitText(
      "Some features of the device will stop working if you close this tool. Are you sure you "
      "want to continue?");
  Dialog(caption).PressButton("No");
  Dialog(caption).AwaitClosed();
  AwaitLine();

  SendTool(kCommand, kChooseDutch);
  EXPECT_EQ(Observer().ReadKey(Root::kUser, kSettingsKey)["CurrentLangID"], "number:1043");
  Observer().Post(kMainWindow, kCommand, kCloseTool);
  Dialog(caption).AwaitText(
      "Sommige functies van het toestel werken niet meer als u dit programma sluit. Weet u zeker "
      "dat u wilt doorgaan?");
  Dialog(caption).PressButton("Yes");
  EXPECT_EQ(ExitCode(), 0);
}

}  // namespace
}  // namespace windows_test
