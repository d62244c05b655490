#include <dbt.h>

#include "tests/tool_test.h"

namespace veltra {
namespace {

using simulator::SimulatedTablet;
using Texts = std::vector<std::string>;

class MainWindow : public ToolTest {
 protected:
  MainWindow() { SetUserValue(u"StartupDelay", 0); }

  std::vector<std::u16string> NewTraces() {
    std::vector<std::u16string> texts;
    for (const auto& output : New<pal::DebugOutput>()) texts.push_back(output.text);
    return texts;
  }
  void Text(std::string_view text) {
    tablet.Pic().SendText(text);
    tablet.Advance(20ms);
  }
};

TEST_F(MainWindow, AnswersWhatTheMakersApplicationsAsk) {
  Start();
  EXPECT_EQ(tablet.Ask(SimulatedTablet::kDeviceToolRequest, 12), 1);
  EXPECT_EQ(tablet.Ask(SimulatedTablet::kDeviceToolRequest, 13), 50);
  EXPECT_EQ(tablet.Ask(SimulatedTablet::kDeviceToolRequest, 20), 0x10032);
  EXPECT_EQ(tablet.Ask(WM_APP + 0x770), 1);  // the codec is ready
  EXPECT_EQ(NewTraces(), std::vector<std::u16string>{u"Kavo3 tool: GetSpeakerVolume invoked"});
  EXPECT_EQ(tablet.Ask(SimulatedTablet::kDeviceToolRequest, 0, -7), 0);
  EXPECT_EQ(NewTraces(), std::vector<std::u16string>{u"Kavo3 tool: device operation 0 -7 invoked"});
}

TEST_F(MainWindow, PowerSourceFollowsTheControllersFlags) {
  Start();
  const struct {
    std::string_view text;
    LRESULT source;
    LRESULT capacity;
  } kSteps[] = {
      {"BATTERYSTATE=0x64", 1, 100}, {"AdapterPresent=1", 3, 100},  {"BatteryState=0x63", 2, 99},
      {"BatteryState=0xFF", 3, 100}, {"BatteryState=0x5", 3, 100},  {"BatteryState=0x-1", 3, 100},
      {"BatteryState=0xg0", 3, 100}, {"BatteryState=0x1fz", 2, 31}, {"BatteryPresent=yes", 4, 31},
      {"batterypresent=1x", 2, 31},  {"AdapterPresent=", 2, 31},    {"AdapterPresent=0", 1, 31},
  };
  for (const auto& step : kSteps) {
    Text(step.text);
    EXPECT_EQ(tablet.Ask(SimulatedTablet::kDeviceToolRequest, 12), step.source) << step.text;
    EXPECT_EQ(tablet.Ask(SimulatedTablet::kDeviceToolRequest, 13), step.capacity) << step.text;
  }
}

TEST_F(MainWindow, FirmwareAnswerNeedsVersion95) {
  tablet.Pic().identity.firmware = "";
  Start();
  const struct {
    std::string_view text;
    LRESULT answer;
  } kSteps[] = {
      {"Firmware=94", 0},  {"Firmware=95", 1},       {"Firmware=", 1},        {"Firmware=x95", 0},
      {"firmware=96b", 1}, {"Firmware=12345678", 1}, {"Firmware=1234567", 1},
  };
  for (const auto& step : kSteps) {
    Text(step.text);
    EXPECT_EQ(tablet.Ask(SimulatedTablet::kQueryFirmware), step.answer) << step.text;
  }
}

TEST_F(MainWindow, StatusLedTakesFourStates) {
  Start();
  for (const WPARAM state : {0, 3, 4, 7}) tablet.Ask(SimulatedTablet::kStatusLedRequest, state);
  tablet.Ask(SimulatedTablet::kStatusLedRequest, static_cast<WPARAM>(-1));
  tablet.Advance(1s);
  EXPECT_EQ(NewRequests(), (Texts{"SetStatusLed=0", "SetStatusLed=3", "SetStatusLed=0", "SetStatusLed=0",
                                  "SetStatusLed=0"}));
}

// ---- copied data ------------------------------------------------------------------------------------------

TEST_F(MainWindow, IdentificationUpdatesAreSentOrRefusedWhole) {
  SwitchDetailsOn();
  Start();
  const struct {
    uint64_t tag;
    std::string payload;
    std::string sent;  // empty: refused
  } kCases[] = {
      {12344, "2.5", "SetTouchVersion=2.5"},
      {12345, "B-1", "SetPCBSerial=B-1"},
      {12346, "4711", "SetSerial=4711"},
      {12347, "", "SetPCBVersion="},
      {12348, std::string(31, 't'), "SetTouchSerial=" + std::string(31, 't')},
      {12349, std::string(15, 'f'), "SetTouchFirmware=" + std::string(15, 'f')},
      {12350, std::string(31, 'c'), "CalibrateTouch" + std::string(31, 'c')},
      {12346, std::string("47\0", 3), "SetSerial=47"},
      {12346, std::string(16, 's'), ""},
      {12348, std::string(32, 't'), ""},
      {12350, std::string(32, 'c'), ""},
      {12351, "unknown", ""},
      {12343, "unknown", ""},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(tablet.SendData(nullptr, c.tag, ToBytes(c.payload)), 0) << c.tag;
    tablet.Advance(100ms);
    EXPECT_EQ(NewRequests(), c.sent.empty() ? Texts() : Texts{c.sent}) << c.tag;
  }
  EXPECT_NE(Log().find("Value refused. . .  ***    more than 15 characters: ssssssssssssssss\r\n"),
            std::string::npos)
      << Log();
  EXPECT_NE(Log().find("copydata . . . . .  >_<    SetTouchSerial= refused: 32 bytes, at most 31\r\n"),
            std::string::npos);
  EXPECT_NE(Log().find(">_<    CalibrateTouch refused: 32 bytes"), std::string::npos);
}

TEST_F(MainWindow, CopiedDataWithoutDataIsAnEmptyPayload) {
  Start();
  COPYDATASTRUCT nothing = {};
  nothing.dwData = 12350;
  nothing.cbData = 20;
  EXPECT_EQ(tablet.Ask(WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&nothing)), 0);
  EXPECT_EQ(tablet.Ask(WM_COPYDATA, 0, 0), 0);
  tablet.Advance(100ms);
  EXPECT_EQ(NewRequests(), Texts{"CalibrateTouch"});
}

TEST_F(MainWindow, AnInfraredRequestComesBackToItsWindow) {
  std::vector<uint8_t> answer;
  const HWND asker = machine.AddForeignWindow(u"Remote", [&](const pal::ForeignMessage& message) -> LRESULT {
    if (message.message == WM_COPYDATA && message.copyDataTag == 0) answer = message.payload;
    return 1;
  });
  Start();
  EXPECT_EQ(tablet.SendData(asker, 1, ToBytes("IRSend=tv power")), 1);
  tablet.Advance(100ms);
  EXPECT_EQ(NewRequests(), Texts{"IRSend=tv power"});
  EXPECT_EQ(answer, ToBytes(tablet.Pic().infraredReply));
}

TEST_F(MainWindow, AnInfraredCancelDropsEverythingThatWaits) {
  const HWND asker = machine.AddForeignWindow(u"Remote");
  Start();
  tablet.Pic().Arm(simulator::Fault::kMute);
  tablet.SendData(asker, 0, ToBytes("IRRecord"));
  tablet.SendData(asker, 0, ToBytes("IRSend=never"));
  tablet.Advance(100ms);
  EXPECT_EQ(tablet.SendData(asker, 3, ToBytes("IRCancel")), 1);
  tablet.Advance(100ms);
  EXPECT_EQ(NewRequests(), (Texts{"IRRecord", "IRCancel"}));
}

TEST_F(MainWindow, TheToolsOwnRecordingIsShownAndWritten) {
  Start();
  tablet.Pic().infraredReply = std::string("0123456789\x04\x05\x55", 13) + std::string(300, 'z');
  tablet.SendData(nullptr, 0, ToBytes("IRRecord"));
  tablet.Advance(100ms);
  ASSERT_EQ(machine.OpenMessageBoxes().size(), 1U);
  EXPECT_EQ(machine.OpenMessageBoxes()[0].text, u"IRRecord received (0123456789\u0004\u0005Uzzzzzzz)");
  EXPECT_EQ(machine.OpenMessageBoxes()[0].caption, u"IRRecord");
  Press(simulator::Button::kSwitch1);  // the tool goes on serving while the box is open
  EXPECT_EQ(New<pal::ForeignMessageSent>().size(), 1U);
  machine.AnswerMessageBox(IDOK);
  tablet.Advance(10ms);
  EXPECT_EQ(machine.ReadFile(u"C:\\Users\\Public\\Documents\\Sarvik5\\ir.txt"), tablet.Pic().infraredReply);
}

// ---- devices ----------------------------------------------------------------------------------------------

TEST_F(MainWindow, OnlyTheControllersPortTouchesTheLink) {
  Start();
  tablet.NotifyPort(false, u"COM20");
  tablet.NotifyPort(false, u"COM");
  EXPECT_TRUE(New<pal::SerialClosed>().empty());
  EXPECT_NE(Log().find("Err device change.  >_<    Port removed: COM20\r\n"), std::string::npos) << Log();
  tablet.NotifyPort(false, u"com2");
  EXPECT_EQ(New<pal::SerialClosed>().size(), 1U);
  EXPECT_NE(Log().find("Port removed: COM2\r\n"), std::string::npos);
  EXPECT_NE(Log().find("Pic port dropped\r\n"), std::string::npos);
}

TEST_F(MainWindow, APortNameEndsWithItsRecord) {
  Start();
  constexpr DWORD kNameAt = 12;
  struct {
    DEV_BROADCAST_HDR header = {0, 3, 0};
    WCHAR name[6] = {'C', 'O', 'M', '2', '7', 'x'};  // no end
  } record;
  const struct {
    DWORD size;
    const char* name;
  } kCases[] = {{kNameAt, ""}, {kNameAt + 1, ""}, {kNameAt + 7, "COM"}, {kNameAt + 10, "COM27"}};
  for (const auto& c : kCases) {
    record.header.dbch_size = c.size;
    EXPECT_EQ(tablet.Ask(WM_DEVICECHANGE, 0x8004, reinterpret_cast<LPARAM>(&record)), 1);
    const std::string line = std::string("Port removed: ").append(c.name).append("\r\n");
    EXPECT_TRUE(Log().ends_with(line)) << Log();
  }
  EXPECT_TRUE(New<pal::SerialClosed>().empty());
}

TEST_F(MainWindow, AnArrivalOpensThePortAtOnceAndTheRetryOpensItOnceAfter30Seconds) {
  Start();
  tablet.NotifyPort(false, u"COM2");
  tablet.Advance(10s);
  tablet.NotifyPort(true, u"COM2");
  EXPECT_EQ(New<pal::SerialOpened>().size(), 1U);
  tablet.Advance(60s);
  EXPECT_TRUE(New<pal::SerialOpened>().empty());  // the retry was called off

  tablet.NotifyPort(false, u"COM2");
  tablet.Advance(29900ms);
  EXPECT_TRUE(New<pal::SerialOpened>().empty());
  tablet.Advance(200ms);
  EXPECT_EQ(New<pal::SerialOpened>().size(), 1U);

  tablet.VanishPort();
  tablet.NotifyPort(false, u"COM2");
  tablet.Advance(120s);
  const std::string failed = "failed to open port\r\n";
  EXPECT_NE(Log().find(failed), std::string::npos);
  EXPECT_EQ(Log().find(failed), Log().rfind(failed));  // one try, no more
}

TEST_F(MainWindow, OldWindowsAndOtherDevicesAreOnlyTraced) {
  machine.SetWindowsVersion(6, 0, 2);
  Start();
  const size_t before = tablet.Mark();
  tablet.NotifyPort(false, u"COM2");
  EXPECT_EQ(NewTraces(),
            (std::vector<std::u16string>{u"OnDeviceChange 00008004\r\n", u"Removal of type 3\r\n"}));
  EXPECT_EQ(tablet.Ask(WM_DEVICECHANGE, 7), 1);
  EXPECT_EQ(NewTraces(), std::vector<std::u16string>{u"OnDeviceChange 00000007\r\n"});
  EXPECT_TRUE(pal::Select<pal::SerialClosed>(tablet.Since(before)).empty());
  EXPECT_EQ(tablet.Ask(WM_DEVICECHANGE, 0x8000, 0), 1);  // no description at all
}

// ---- the end ----------------------------------------------------------------------------------------------

TEST_F(MainWindow, ClosingAsksFirst) {
  Start();
  machine.Post(tablet.MainWindow(), WM_COMMAND, 128, 0);
  tablet.Advance(10ms);
  ASSERT_EQ(machine.OpenMessageBoxes().size(), 1U);
  EXPECT_EQ(machine.OpenMessageBoxes()[0].text,
            u"Some features of the device will stop working if you close this tool. Are you sure you want to "
            u"continue?");
  machine.AnswerMessageBox(IDNO);
  tablet.Advance(1s);
  EXPECT_FALSE(machine.ExitCode());
  EXPECT_TRUE(tablet.Quit());
  EXPECT_EQ(machine.ExitCode(), 0);
}

}  // namespace
}  // namespace veltra
