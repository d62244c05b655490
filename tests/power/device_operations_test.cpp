#include <objbase.h>

#include <algorithm>

#include "simulator/board.h"
#include "tests/tool_test.h"

namespace veltra {
namespace {

class DeviceOperations : public ToolTest {
 protected:
  void Operate(int32_t operation, int32_t value = 0) {
    tablet.Ask(simulator::SimulatedTablet::kDeviceToolRequest, static_cast<WPARAM>(operation + 1), value);
    tablet.Advance(50ms);
  }
  Texts NewBus() {
    Texts lines;
    for (const auto& call : New<pal::DeviceCall>())
      if (call.device == "i2c") lines.push_back(call.call);
    return lines;
  }
  Texts NewBalloons() {
    Texts texts;
    for (const auto& change : New<pal::TrayChange>())
      if (change.balloon) texts.emplace_back(change.balloon->text.begin(), change.balloon->text.end());
    return texts;
  }
};

// What leaves the tool by each operation, on the line and on the bus.
TEST_F(DeviceOperations, EachHasItsBytes) {
  struct Row {
    int32_t operation;
    int32_t value;
    Texts line;
    Texts bus;
  };
  // The expander's port B holds 5D before.
  const Row rows[] = {
      {0, 0, {}, {"10: 02 06"}},
      {1, 0, {}, {"10: 02 86"}},
      {3, 0, {"EnableGsm=0"}, {"20: 13 1D"}},
      {2, 0, {"EnableGsm=1"}, {"20: 13 5D"}},
      {5, 0, {}, {"30: 05 22 00 30 01 00"}},
      {4, 0, {}, {"30: 05 22 00 30 01 28"}},
      {6, 5000, {"StartWithSwitch=5000"}, {}},
      {6, 0, {"StartWithSwitch=0"}, {}},
      {6, -7, {"StartWithSwitch=0"}, {}},
      {7, 1, {}, {}},
      {9, 0, {}, {"38: 00 C9 00 80 00 00", "38: 00 CB 00 80 00 00"}},
      {8, 0, {}, {"38: 00 C9 00 00 00 00", "38: 00 CB 00 00 00 00"}},
      {10, 90, {}, {"30: 05 22 00 38 01 28"}},
      {10, 0, {}, {"30: 05 22 00 00 01 28"}},
      {10, 50, {}, {"30: 05 22 00 30 01 28"}},
      {14, 0, {"EnableBT=0"}, {"20: 13 59"}},
      {13, 0, {"EnableBT=1"}, {"20: 13 5D"}},
      {16, 0, {}, {"30: 05 22 00 30 01 00"}},
      {16, 0, {}, {"30: 05 22 00 30 01 28"}},
  };
  Start();
  for (const Row& row : rows) {
    SCOPED_TRACE(std::to_string(row.operation).append(" ").append(std::to_string(row.value)));
    Operate(row.operation, row.value);
    EXPECT_EQ(NewRequests(), row.line);
    EXPECT_EQ(NewBus(), row.bus);
  }
}

TEST_F(DeviceOperations, TheMobilePhonesSupplyWaitsForTheController) {
  Start();
  Operate(3);
  tablet.Pic().SetReplyDelay(1s);
  NewBus();
  Operate(2);
  EXPECT_EQ(NewBus(), Texts());
  tablet.Advance(1s);
  EXPECT_EQ(NewBus(), Texts{"20: 13 5D"});
}

TEST_F(DeviceOperations, NumbersOutsideTheListAreLeftAlone) {
  Start();
  for (const WPARAM request : {WPARAM{0}, WPARAM{21}, WPARAM{0x10001}, static_cast<WPARAM>(-1)})
    tablet.Ask(simulator::SimulatedTablet::kDeviceToolRequest, request, 1);
  EXPECT_EQ(NewBus(), Texts());
  EXPECT_EQ(NewRequests(), Texts());
}

TEST_F(DeviceOperations, TheCallProfileComesBackToWhereItWas) {
  simulator::Board& board = simulator::TheBoard();
  const std::vector<uint8_t> kWide = {0x00, 0x2F};
  const std::vector<uint8_t> kNarrow = {0x00, 0x27};
  Start();
  Operate(18, 3);
  Operate(17, 0);  // nothing to come back to
  EXPECT_EQ(board.codec[0xE280], kWide);
  Operate(17, 2);
  EXPECT_EQ(board.codec[0xE280], kWide);
  Operate(17, 1);
  EXPECT_EQ(board.codec[0xE280], kNarrow);
  Operate(17, 0);
  EXPECT_EQ(board.codec[0xE280], kWide);
  Operate(17, 1);
  Operate(17, 1);  // now the saved profile is the call's own
  Operate(17, 0);
  EXPECT_EQ(board.codec[0xE280], kNarrow);
}

TEST_F(DeviceOperations, InFlightModeNoRadioGoesOn) {
  SetUserValue(u"EnableFlightMode", 1);
  ASSERT_TRUE(tablet.StartAndSettle());
  Texts requests = NewRequests();
  ASSERT_FALSE(requests.empty());
  EXPECT_EQ(requests.back(), "EnableGsm=0");
  EXPECT_EQ(std::ranges::count(requests, "EnableBT=1"), 0);
  EXPECT_EQ(simulator::TheBoard().expander[0x12] & 0x02, 0);
  EXPECT_EQ(NewBalloons(), Texts());
  tablet.Advance(3s);
  EXPECT_EQ(NewBalloons(), Texts{"Flight mode is active"});
  for (const int32_t operation : {2, 13}) {
    Operate(operation);
    EXPECT_EQ(NewRequests(), Texts());
    EXPECT_EQ(NewBalloons(), Texts{"Flight mode is active"});
  }
  Operate(14);
  Operate(3);
  EXPECT_EQ(NewRequests(), (Texts{"EnableBT=0", "EnableGsm=0"}));
}

TEST_F(DeviceOperations, RadiosThatAreOffStayOff) {
  for (const char16_t* name : {u"EnableWLAN", u"EnableBluetooth", u"EnableMobilePhone"})
    SetUserValue(name, 0);
  ASSERT_TRUE(tablet.StartAndSettle());
  const Texts requests = NewRequests();
  EXPECT_EQ(requests.back(), "EnableGsm=0");
  EXPECT_EQ(std::ranges::count(requests, "EnableBT=1"), 0);
  EXPECT_EQ(simulator::TheBoard().expander[0x12] & 0x02, 0);
}

// ---- volumes ----------------------------------------------------------------------------------------------

TEST_F(DeviceOperations, TheVolumeIsStoredAndSetsTheEndpoint) {
  struct Row {
    int32_t volume;
    int percent;
  };
  Start();
  for (const Row& row : {Row{10, 10}, Row{30, 50}, Row{50, 90}, Row{55, 100}, Row{100, 100}, Row{0, 0},
                         Row{-40, 0}, Row{2147483647, 100}}) {
    SCOPED_TRACE(row.volume);
    Operate(10, row.volume);
    EXPECT_EQ(static_cast<int>(machine.Playback().level * 100 + 0.5F), row.percent);
    EXPECT_EQ(UserValue(u"SpeakerVol"), static_cast<uint32_t>(row.volume));
  }
  Operate(10, -1);  // the stored one again
  EXPECT_EQ(UserValue(u"SpeakerVol"), 2147483647U);
  EXPECT_EQ(tablet.Ask(simulator::SimulatedTablet::kDeviceToolRequest, 20), 0x1FFFF);
  EXPECT_EQ(machine.CountOpen("com object"), 0);
}

TEST_F(DeviceOperations, AnUnsetVolumeBecomesFifty) {
  Start();
  EXPECT_EQ(tablet.Ask(simulator::SimulatedTablet::kDeviceToolRequest, 20), 0x10032);
  EXPECT_EQ(static_cast<int>(machine.Playback().level * 100 + 0.5F), 90);
  EXPECT_FALSE(machine.Playback().isMuted);
}

TEST_F(DeviceOperations, TheEndpointIsTriedFiveTimesAndThenABoxIsShown) {
  for (const char* step : {"CoCreateGuid", "CoCreateInstance", "GetDefaultAudioEndpoint", "Activate"}) {
    SCOPED_TRACE(step);
    if (!tablet.MainWindow()) Start();
    machine.Fail(step, 5, static_cast<DWORD>(E_FAIL));
    machine.Post(tablet.MainWindow(), simulator::SimulatedTablet::kDeviceToolRequest, 11, 100);
    tablet.Advance(9999ms);
    EXPECT_TRUE(machine.OpenMessageBoxes().empty());
    NewBus();
    tablet.Advance(10ms);
    ASSERT_EQ(machine.OpenMessageBoxes().size(), 1U);
    EXPECT_EQ(machine.OpenMessageBoxes()[0].text, u"A problem with the audio codec was detected.");
    EXPECT_EQ(machine.OpenMessageBoxes()[0].caption, u"Error termination");
    EXPECT_EQ(NewBus(), Texts());
    machine.AnswerMessageBox(IDOK);
    tablet.Advance(10ms);
    EXPECT_EQ(NewBus(), Texts{"30: 05 22 00 3A 01 28"});
    EXPECT_EQ(machine.CountOpen("com object"), 0);
  }
}

TEST_F(DeviceOperations, TheSecondAttemptMaySucceed) {
  Start();
  machine.Fail("CoCreateInstance", 1, static_cast<DWORD>(E_FAIL));
  machine.Post(tablet.MainWindow(), simulator::SimulatedTablet::kDeviceToolRequest, 11, 30);
  tablet.Advance(1100ms);
  EXPECT_EQ(static_cast<int>(machine.Playback().level * 100 + 0.5F), 50);
  EXPECT_TRUE(machine.OpenMessageBoxes().empty());
  size_t retries = 0;
  for (const auto& output : New<pal::DebugOutput>())
    retries += output.text == u"SetSpeakerVolume failed: retrying";
  EXPECT_EQ(retries, 1U);
}

TEST_F(DeviceOperations, ADeviceThatCannotBeSetSaysSoAndTheToolRunsOn) {
  Start();
  machine.Fail("SetMute", 1, static_cast<DWORD>(E_FAIL));
  machine.Post(tablet.MainWindow(), simulator::SimulatedTablet::kDeviceToolRequest, 11, 30);
  tablet.Advance(10ms);
  ASSERT_EQ(machine.OpenMessageBoxes().size(), 1U);
  EXPECT_EQ(machine.OpenMessageBoxes()[0].caption, u"Fatal error");
  EXPECT_EQ(machine.OpenMessageBoxes()[0].text, u"The program will exit.");
  machine.AnswerMessageBox(IDOK);
  tablet.Advance(10ms);
  EXPECT_EQ(static_cast<int>(machine.Playback().level * 100 + 0.5F), 50);
  EXPECT_TRUE(tablet.Quit());
}

// ---- Windows' power settings ------------------------------------------------------------------------------

constexpr std::u16string_view kPowerKey = u"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Power";
constexpr std::u16string_view kDeviceKey =
    u"SYSTEM\\CurrentControlSet\\Enum\\PCI\\VEN_8086&DEV_9C3A&SUBSYS_72708086&REV_04\\3&11583659&0&"
    u"B0\\Device "
    u"Parameters\\WDF";

TEST_F(DeviceOperations, PowerSettingsThatAreOnAreTurnedOffBeforeTheWindowExists) {
  machine.SetRegistryDword(HKEY_LOCAL_MACHINE, kPowerKey, u"HiberbootEnabled", 1);
  machine.SetRegistryDword(HKEY_LOCAL_MACHINE, kDeviceKey, u"IdleInWorkingState", 1);
  machine.SetExecutedProgramTime(60s);  // each waits for its 5 seconds
  tablet.Start();
  tablet.Advance(1s);
  EXPECT_EQ(tablet.MainWindow(), nullptr);
  tablet.Advance(8s);
  EXPECT_EQ(tablet.MainWindow(), nullptr);
  tablet.Advance(2s);
  EXPECT_NE(tablet.MainWindow(), nullptr);
  const auto started = New<pal::ProgramExecuted>();
  ASSERT_EQ(started.size(), 2U);
  EXPECT_EQ(started[0].file, u"C:\\Program Files\\Veltra\\FlagToggler.exe");
  EXPECT_EQ(started[0].verb, u"runas");
  EXPECT_EQ(started[0].parameters,
            u"OurQuietSmallMarker -KeyName \"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Power\" "
            u"-ValueName "
            u"\"HiberbootEnabled\" -SetValue 0");
  EXPECT_NE(started[1].parameters.find(u"Device Parameters\\WDF\" -ValueName \"IdleInWorkingState\""),
            std::u16string::npos);
}

TEST_F(DeviceOperations, PowerSettingsThatAreOffOrOddStartNothing) {
  const uint8_t text[] = {'1', 0, 0, 0};
  machine.SetRegistryDword(HKEY_LOCAL_MACHINE, kPowerKey, u"HiberbootEnabled", 2);
  machine.SetRegistryValue(HKEY_LOCAL_MACHINE, kDeviceKey, u"IdleInWorkingState", REG_SZ, text);
  tablet.Start();
  tablet.Advance(1s);
  EXPECT_NE(tablet.MainWindow(), nullptr);
  EXPECT_TRUE(New<pal::ProgramExecuted>().empty());
}

TEST_F(DeviceOperations, BrightnessGoesToItsTool) {
  Start();
  Operate(15, 70);
  const auto started = New<pal::ProgramExecuted>();
  ASSERT_EQ(started.size(), 1U);
  EXPECT_EQ(started[0].file, u"C:\\Program Files\\Veltra\\nircmd.exe");
  EXPECT_EQ(started[0].parameters, u"setbrightness 70");
  EXPECT_EQ(started[0].directory, u"C:\\Program Files\\Veltra\\");
}

}  // namespace
}  // namespace veltra
