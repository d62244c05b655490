#include <dbt.h>

#include "base/table.h"
#include "tests/tool_test.h"

namespace veltra {
namespace {

constexpr RangeRow<int> kOverlapping[] = {{1, 3, 0}, {4, 6, 0}, {3, 3, 0}};
static_assert(!AreApart(kOverlapping));

using simulator::SimulatedTablet;

class MainWindow : public ToolTest {
 protected:
  MainWindow() { SetUserValue(u"StartupDelay", 0); }

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
  EXPECT_EQ(Did({"debug"}), Texts{"debug Kavo3 tool: GetSpeakerVolume invoked"});
  EXPECT_EQ(tablet.Ask(SimulatedTablet::kDeviceToolRequest, 0, -7), 0);
  EXPECT_EQ(Did({"debug"}), Texts{"debug Kavo3 tool: device operation 0 -7 invoked"});
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

TEST_F(MainWindow, OldWindowsAndOtherDevicesAreOnlyTraced) {
  machine.system.version = {6, 0, 2};
  Start();
  const size_t before = tablet.Mark();
  tablet.NotifyPort(false, u"COM2");
  EXPECT_EQ(Did({"debug"}), (Texts{"debug OnDeviceChange 00008004", "debug Removal of type 3"}));
  tablet.NotifyPort(true, u"COM2");
  EXPECT_EQ(Did({"debug"}), (Texts{"debug OnDeviceChange 00008000", "debug Arrival of type 3"}));
  EXPECT_EQ(tablet.Ask(WM_DEVICECHANGE, 7), 1);
  EXPECT_EQ(Did({"debug"}), Texts{"debug OnDeviceChange 00000007"});
  EXPECT_TRUE(pal::Select<pal::SerialClosed>(tablet.Since(before)).empty());
  EXPECT_EQ(tablet.Ask(WM_DEVICECHANGE, 0x8000, 0), 1);  // no description at all
}

}  // namespace
}  // namespace veltra
