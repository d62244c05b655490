// The device report of the real program, as a window gets it and as toolprobe prints it.
#include "tests/report/expected_report.h"
#include "tests/windows/tool_fixture.h"

namespace windows_test {
namespace {

using expected_report::Report;

constexpr char kAsker[] = "Veltra Observer";
constexpr int64_t kWholeReport = 0;
constexpr int64_t kBatteryReport = 1;
constexpr int64_t kNoSection = 2;

// The bytes of the text and its terminator, as the observer writes them.
std::string HexOf(std::u16string_view text) {
  std::string hex;
  char digits[5];
  for (const char16_t unit : std::u16string(text) + u'\0') {
    std::snprintf(digits, sizeof digits, "%02X%02X", unit & 0xFFU, unit >> 8U);
    hex += digits;
  }
  return hex;
}

class ReportTest : public ToolTest {
 protected:
  void StartKnowingTool() {
    StartQuietTool();
    Line().SendText("Firmware=101b");
    Line().SendText("Serial=A&\xE9");
    AwaitLine();
  }
  void ExpectReport(const char* receiver, std::u16string_view report) {
    Observer().Expect(std::string("copied ")
                          .append(receiver)
                          .append(" 0 ")
                          .append(HexOf(report))
                          .append(" VeltraInternal"));
  }
  // What toolprobe prints, with plain line ends.
  std::string Probe(const std::vector<std::string>& arguments, int exitCode) {
    WineProcess probe("toolprobe.exe", arguments);
    std::string text = probe.ReadAll();
    EXPECT_EQ(probe.ExitCode(), exitCode);
    std::erase(text, '\r');
    return text;
  }
};

TEST_F(ReportTest, GoesToTheWindowThatTheRequestNames) {
  StartKnowingTool();
  const int64_t asker = Observer().Handle(kAsker);
  const std::u16string hardware = expected_report::Hardware({u"101b", u"", u"", u"A&amp;\u00E9"});
  const std::u16string battery = expected_report::Battery({});  // never received
  const std::pair<int64_t, std::u16string> reports[] = {
      {kWholeReport, Report({hardware, expected_report::Platform(), battery})},
      {kBatteryReport, Report({battery})},
      {kNoSection, std::u16string(expected_report::kNoItems)},
  };
  for (const auto& [selection, report] : reports) {
    EXPECT_EQ(SendTool(kDeviceReportRequest, selection, asker), 0);
    ExpectReport(kAsker, report);
  }
  for (const int64_t nobody :
       {int64_t{0}, int64_t{0x7FFFFFF0}, int64_t{0xFFFF}, Observer().Handle(kMainWindow)})
    EXPECT_EQ(SendTool(kDeviceReportRequest, kNoSection, nobody), 0);
  AwaitLine();
  Line().ExpectNothing();
  Observer().ExpectNothing();
}

TEST_F(ReportTest, AHungReceiverDelaysAPressAndLosesNone) {
  Set("Sw1CmdVal", -1);
  StartKnowingTool();
  Observer().OpenHungWindow("Hung");
  const int64_t hung = Observer().Handle("Hung");
  for (int n = 0; n < 100; ++n) Observer().Post(kMainWindow, kDeviceReportRequest, kWholeReport, hung);
  Line().SendText("Sw1Make");
  Line().SendText("Sw1Break");
  AwaitLine();
  Observer().Expect("mouse left down");
  Observer().Expect("mouse left up");
}

TEST_F(ReportTest, AReceiverThatAlwaysAsksAgainIsCutShort) {
  constexpr int kMostAtATime = 8;
  StartKnowingTool();
  Observer().OpenWindow("Asks Again");
  EXPECT_EQ(SendTool(kDeviceReportRequest, kNoSection, Observer().Handle("Asks Again")), 0);
  for (int n = 0; n < kMostAtATime; ++n) ExpectReport("Asks Again", expected_report::kNoItems);
  Observer().ExpectNothing();
  SendTool(kDeviceReportRequest, kNoSection, Observer().Handle(kAsker));
  ExpectReport(kAsker, expected_report::kNoItems);
}

TEST_F(ReportTest, TheProbePrintsWhatTheToolKnows) {
  Set("SpeakerVol", 70);
  StartKnowingTool();
  Line().SendText("BatteryState=0x40");
  AwaitLine();
  EXPECT_EQ(Probe({}, 0),
            "power source    battery\n"
            "capacity        64 %\n"
            "speaker volume  70\n"
            "firmware        95 or later\n"
            "codec           ready\n"
            "HW\n"
            "  PIC Firmware       101b\n"
            "  PCBSn              -\n"
            "  PCBVersion         -\n"
            "  DevSn              A&\xC3\xA9\n"
            "  TouchSn            -\n"
            "  TouchVersion       -\n"
            "  TouchFirmware      -\n"
            "Platform\n"
            "  BoardName          QX7-i\n"
            "  Manufacturer       Brookfield Embedded\n"
            "  Serial             BF-0099123\n"
            "  HardwareVersion    B.2\n"
            "  CarrierInfo        tablet carrier 4\n"
            "  FirmwareVersion    1.13\n"
            "  CPUName            Corvid N2600 @ 1.60GHz\n"
            "  CPUCount           1\n"
            "  CPUCoreCount       2\n"
            "  CPUThreadCount     4\n"
            "  MemTotal           2048\n"
            "  MemFree            1187\n"
            "  MemSpeed           800\n"
            "  MemType            DDR3\n"
            "Battery\n"
            "  Name               -\n"
            "  Serial             -\n"
            "  Date               -\n"
            "  Temp               -\n"
            "  Voltage            -\n"
            "  Current            -\n"
            "  Manufacturer       -\n"
            "  Chemistry          -\n"
            "  CapacityRemaining  -\n"
            "  CapacityDesign     -\n"
            "  VoltageDesign      -\n"
            "  Cycles             -\n"
            "  Status             -\n");
  EXPECT_TRUE(Probe({"--xml", "report"}, 0).starts_with("<Report Version=\"1\">\n<Item C=\"HW\""));
}

TEST_F(ReportTest, TheProbeSaysWhyItHasNoAnswer) {
  EXPECT_EQ(Probe({}, 1), "");
  EXPECT_EQ(Probe({"nonsense"}, 2), "");
  EXPECT_TRUE(Probe({"--help"}, 0).starts_with("usage: toolprobe"));
}

}  // namespace
}  // namespace windows_test
