// The report as another program gets it, compared with documents written out.
#include "simulator/board.h"
#include "tests/report/expected_report.h"
#include "tests/tool_test.h"

namespace veltra {
namespace {

using expected_report::Battery;
using expected_report::Hardware;
using expected_report::kNoItems;
using expected_report::Platform;
using expected_report::Report;
using simulator::SimulatedTablet;
using simulator::TheBoard;

const std::u16string kHardware =
    Hardware({u"112", u"B-20310077", u"3.1", u"SV5-0012345", u"T-99120034", u"2.4", u"1.07"});
const std::u16string kPlatform = Platform();
const std::u16string kBattery = Battery({u"NC-7S2P", u"4711", u"2023-05-17", u"2981", u"11782", u"-1240",
                                         u"Nordcell", u"LION", u"5160", u"6800", u"11100", u"37", u"00C0"});

class DeviceReport : public ToolTest {
 protected:
  DeviceReport() { SetUserValue(u"StartupDelay", 0); }

  LRESULT Ask(WPARAM selection, HWND receiver) {
    return tablet.Ask(SimulatedTablet::kDeviceReportRequest, selection, reinterpret_cast<LPARAM>(receiver))
        .value_or(-1);
  }
  // The report that came, without its terminator, which is checked.
  std::u16string Asked(WPARAM selection) {
    received.clear();
    EXPECT_EQ(Ask(selection, asker), 0);
    if (received.size() != 1) return u"not one report";
    const std::vector<uint8_t>& bytes = received[0].payload;
    std::u16string text;
    for (size_t n = 0; n + 1 < bytes.size(); n += 2)
      text.push_back(static_cast<char16_t>(bytes[n] | bytes[n + 1] << 8));
    EXPECT_EQ(bytes.size() % 2, 0U);
    EXPECT_EQ(text.find(u'\0'), text.size() - 1);
    text.pop_back();
    return text;
  }

  std::vector<pal::ForeignMessage> received;
  const HWND asker =
      machine.desktop.AddForeignWindow(u"Asker", [this](const pal::ForeignMessage& message) -> LRESULT {
        received.push_back(message);
        return 1;
      });
};

TEST_F(DeviceReport, SelectionsChooseTheSections) {
  Start();
  EXPECT_EQ(Asked(0), Report({kHardware, kPlatform, kBattery}));
  EXPECT_EQ(received[0].message, static_cast<UINT>(WM_COPYDATA));
  EXPECT_EQ(received[0].copyDataTag, 0U);
  EXPECT_EQ(received[0].wParam, reinterpret_cast<WPARAM>(tablet.MainWindow()));
  EXPECT_EQ(Asked(1), Report({kBattery}));
  for (const WPARAM nothing : {WPARAM{2}, WPARAM{77}, ~WPARAM{0}}) EXPECT_EQ(Asked(nothing), kNoItems);
}

TEST_F(DeviceReport, PlatformIsWholeOrMissing) {
  Start();
  const std::u16string without = Report({kHardware, kBattery});
  for (int32_t simulator::Board::*error : {&simulator::Board::boardInfoError, &simulator::Board::cpuInfoError,
                                           &simulator::Board::memoryInfoError}) {
    TheBoard().*error = -3;
    New<pal::DeviceCall>();
    EXPECT_EQ(Asked(0), without);
    EXPECT_EQ(New<pal::DeviceCall>().size(), 3U);
    TheBoard().*error = 0;
  }
  EXPECT_EQ(Asked(0), Report({kHardware, kPlatform, kBattery}));  // nothing is remembered
  EXPECT_TRUE(machine.boxes.Shown().empty());
}

TEST_F(DeviceReport, WhatWasNeverReceivedIsEmpty) {
  tablet.TheDesk().Remove(simulator::Library::kBoard);
  tablet.Pic().Arm(simulator::Fault::kMute, 1);  // the first request blocks all the others
  tablet.Start();
  tablet.Advance(3s);
  EXPECT_EQ(Asked(0), Report({Hardware({}), Battery({})}));
}

// A newer library may have longer records.
//
// The board's texts and the firmware version are 8-bit texts of the code page; every other byte from the
// controller is one character. Of all values only the touch screen's firmware may be received empty.
TEST_F(DeviceReport, ValuesAreEscapedAndCharactersKept) {
  Start();
  for (const char* text : {"Firmware=9\x80<&\"", "Serial='a\x80>\xE9", "PCBSerial=5", "PCBVersion=6",
                           "TouchSerial=7", "TouchVersion=8", "TouchFirmware=9", "Firmware=", "Serial=",
                           "PCBSerial=", "PCBVersion=", "TouchSerial=", "TouchVersion=", "TouchFirmware="})
    tablet.Pic().SendText(text);
  tablet.Advance(20ms);
  simulator::Platform& platform = TheBoard().platform;
  platform.boardName = "b\x80\xE9 & <c>";
  platform.manufacturer = std::string(80, 'm');
  platform.serialNumber = "";
  platform.cpuName = std::string(63, 'c');
  platform.memoryTotal = 2147483647;
  platform.memoryFree = -1;
  platform.memoryType = std::string(32, 't');
  TheBoard().longerBy = 1000;
  EXPECT_EQ(
      Asked(0),
      Report({Hardware({u"9\u20AC&lt;&amp;&quot;", u"5", u"6", u"&apos;a\u0080&gt;\u00E9", u"7", u"8", u""}),
              Platform({u"b\u20AC\u00E9 &amp; &lt;c&gt;", std::u16string(64, u'm'), u"", u"B.2",
                        u"tablet carrier 4", u"1.13", std::u16string(63, u'c'), u"1", u"2", u"4",
                        u"2147483647", u"-1", u"800", std::u16string(32, u't')}),
              kBattery}));
}

TEST_F(DeviceReport, GoesNowhereWithoutAWindow) {
  Start();
  const HWND gone = machine.desktop.AddForeignWindow(u"Gone");
  machine.desktop.RemoveForeignWindow(gone);
  for (const HWND receiver : {HWND{}, gone, HWND_BROADCAST, reinterpret_cast<HWND>(intptr_t{-1})})
    EXPECT_EQ(Ask(0, receiver), 0);
  EXPECT_TRUE(New<pal::ForeignMessageSent>().empty());
}

}  // namespace
}  // namespace veltra
