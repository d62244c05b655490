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

std::u16string Item(std::u16string_view key, std::u16string_view value) {
  return std::u16string(u"K=\"").append(key).append(u"\" V=\"").append(value).append(u"\"/>\r\n");
}

class DeviceReport : public ToolTest {
 protected:
  DeviceReport() { SetUserValue(u"StartupDelay", 0); }

  void Text(std::string_view text) {
    tablet.Pic().SendText(text);
    tablet.Advance(20ms);
  }
  LRESULT Ask(WPARAM selection) {
    return tablet.Ask(SimulatedTablet::kDeviceReportRequest, selection, reinterpret_cast<LPARAM>(asker))
        .value_or(-1);
  }
  // The report that came, without its terminator, which is checked.
  std::u16string Asked(WPARAM selection) {
    received.clear();
    EXPECT_EQ(Ask(selection), 0);
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
      machine.AddForeignWindow(u"Asker", [this](const pal::ForeignMessage& message) -> LRESULT {
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
  EXPECT_TRUE(machine.OpenMessageBoxes().empty());
}

TEST_F(DeviceReport, WithoutTheLibraryThereIsNoPlatform) {
  tablet.TheDesk().Remove(simulator::Library::kBoard);
  Start();
  EXPECT_EQ(Asked(0), Report({kHardware, kBattery}));
}

TEST_F(DeviceReport, WhatWasNeverReceivedIsEmpty) {
  tablet.Pic().Arm(simulator::Fault::kMute, 1);  // the first request blocks all the others
  tablet.Start();
  tablet.Advance(3s);
  const std::u16string report = Asked(0);
  for (const char16_t* item :
       {u"<Item C=\"HW\" K=\"PIC Firmware\" V=\"\"/>\r\n", u"<Item C=\"HW\" K=\"DevSn\" V=\"\"/>\r\n",
        u"<Item C=\"Battery\" K=\"Name\" V=\"\"/>\r\n", u"<Item C=\"Battery\" K=\"Status\" V=\"\"/>\r\n"})
    EXPECT_NE(report.find(item), std::u16string::npos);
}

// The board's texts and the firmware version are 8-bit texts of the code page; every other byte from the
// controller is one character.
TEST_F(DeviceReport, ValuesAreEscapedAndCharactersKept) {
  Start();
  Text("Firmware=9\x80<&\"");
  Text("Serial='a\x80>\xE9");
  Text("TouchFirmware=");
  TheBoard().platform.boardName = "b\x80\xE9 & <c>";
  TheBoard().platform.manufacturer = std::string(80, 'm');
  TheBoard().platform.cpuName = std::string(63, 'c');
  TheBoard().platform.serialNumber = "";
  TheBoard().platform.memoryFree = -1;
  TheBoard().platform.memoryTotal = 2147483647;
  TheBoard().platform.memoryType = std::string(32, 't');
  const std::u16string report = Asked(0);
  const std::u16string items[] = {
      u"K=\"PIC Firmware\" V=\"9\u20AC&lt;&amp;&quot;\"/>\r\n",
      u"K=\"DevSn\" V=\"&apos;a\u0080&gt;\u00E9\"/>\r\n",
      u"K=\"TouchFirmware\" V=\"\"/>\r\n",
      u"K=\"BoardName\" V=\"b\u20AC\u00E9 &amp; &lt;c&gt;\"/>\r\n",
      Item(u"Manufacturer", std::u16string(64, u'm')),
      Item(u"CPUName", std::u16string(63, u'c')),
      u"C=\"Platform\" K=\"Serial\" V=\"\"/>\r\n",
      u"K=\"MemFree\" V=\"-1\"/>\r\n",
      u"K=\"MemTotal\" V=\"2147483647\"/>\r\n",
      Item(u"MemType", std::u16string(32, u't')),
  };
  for (const std::u16string& item : items)
    EXPECT_NE(report.find(item), std::u16string::npos) << &item - items;
}

TEST_F(DeviceReport, GoesNowhereWithoutAWindow) {
  Start();
  const HWND gone = machine.AddForeignWindow(u"Gone");
  machine.RemoveForeignWindow(gone);
  for (const HWND receiver : {HWND{}, gone, HWND_BROADCAST, reinterpret_cast<HWND>(intptr_t{-1})})
    EXPECT_EQ(tablet.Ask(SimulatedTablet::kDeviceReportRequest, 0, reinterpret_cast<LPARAM>(receiver)), 0);
  EXPECT_TRUE(New<pal::ForeignMessageSent>().empty());
}

}  // namespace
}  // namespace veltra
