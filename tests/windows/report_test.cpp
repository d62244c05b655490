// The device report of the real program, as a window gets it and as toolprobe prints it.
#include "tests/windows/tool_fixture.h"

namespace windows_test {
namespace {

constexpr char kAsker[] = "Veltra Observer";
constexpr int64_t kWholeReport = 0;
constexpr int64_t kBatteryReport = 1;
constexpr int64_t kNoItems = 2;

constexpr char16_t kBegin[] = u"<Report Version=\"1\">\r\n";
constexpr char16_t kEnd[] = u"</Report>\r\n";
constexpr char16_t kHardware[] =
    u"<Item C=\"HW\" K=\"PIC Firmware\" V=\"101b\"/>\r\n"
    u"<Item C=\"HW\" K=\"PCBSn\" V=\"\"/>\r\n"
    u"<Item C=\"HW\" K=\"PCBVersion\" V=\"\"/>\r\n"
    u"<Item C=\"HW\" K=\"DevSn\" V=\"A&amp;\u00E9\"/>\r\n"
    u"<Item C=\"HW\" K=\"TouchSn\" V=\"\"/>\r\n"
    u"<Item C=\"HW\" K=\"TouchVersion\" V=\"\"/>\r\n"
    u"<Item C=\"HW\" K=\"TouchFirmware\" V=\"\"/>\r\n";
constexpr char16_t kPlatform[] =
    u"<Item C=\"Platform\" K=\"BoardName\" V=\"QX7-i\"/>\r\n"
    u"<Item C=\"Platform\" K=\"Manufacturer\" V=\"Brookfield Embedded\"/>\r\n"
    u"<Item C=\"Platform\" K=\"Serial\" V=\"BF-0099123\"/>\r\n"
    u"<Item C=\"Platform\" K=\"HardwareVersion\" V=\"B.2\"/>\r\n"
    u"<Item C=\"Platform\" K=\"CarrierInfo\" V=\"tablet carrier 4\"/>\r\n"
    u"<Item C=\"Platform\" K=\"FirmwareVersion\" V=\"1.13\"/>\r\n"
    u"<Item C=\"Platform\" K=\"CPUName\" V=\"Corvid N2600 @ 1.60GHz\"/>\r\n"
    u"<Item C=\"Platform\" K=\"CPUCount\" V=\"1\"/>\r\n"
    u"<Item C=\"Platform\" K=\"CPUCoreCount\" V=\"2\"/>\r\n"
    u"<Item C=\"Platform\" K=\"CPUThreadCount\" V=\"4\"/>\r\n"
    u"<Item C=\"Platform\" K=\"MemTotal\" V=\"2048\"/>\r\n"
    u"<Item C=\"Platform\" K=\"MemFree\" V=\"1187\"/>\r\n"
    u"<Item C=\"Platform\" K=\"MemSpeed\" V=\"800\"/>\r\n"
    u"<Item C=\"Platform\" K=\"MemType\" V=\"DDR3\"/>\r\n";
constexpr char16_t kBattery[] =
    u"<Item C=\"Battery\" K=\"Name\" V=\"\"/>\r\n"
    u"<Item C=\"Battery\" K=\"Serial\" V=\"\"/>\r\n"
    u"<Item C=\"Battery\" K=\"Date\" V=\"\"/>\r\n"
    u"<Item C=\"Battery\" K=\"Temp\" V=\"\"/>\r\n"
    u"<Item C=\"Battery\" K=\"Voltage\" V=\"\"/>\r\n"
    u"<Item C=\"Battery\" K=\"Current\" V=\"\"/>\r\n"
    u"<Item C=\"Battery\" K=\"Manufacturer\" V=\"\"/>\r\n"
    u"<Item C=\"Battery\" K=\"Chemistry\" V=\"\"/>\r\n"
    u"<Item C=\"Battery\" K=\"CapacityRemaining\" V=\"\"/>\r\n"
    u"<Item C=\"Battery\" K=\"CapacityDesign\" V=\"\"/>\r\n"
    u"<Item C=\"Battery\" K=\"VoltageDesign\" V=\"\"/>\r\n"
    u"<Item C=\"Battery\" K=\"Cycles\" V=\"\"/>\r\n"
    u"<Item C=\"Battery\" K=\"Status\" V=\"\"/>\r\n";

std::u16string Join(std::initializer_list<std::u16string_view> texts) {
  std::u16string joined;
  for (const std::u16string_view text : texts) joined += text;
  return joined;
}

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
  const std::pair<int64_t, std::u16string> reports[] = {
      {kWholeReport, Join({kBegin, kHardware, kPlatform, kBattery, kEnd})},
      {kBatteryReport, Join({kBegin, kBattery, kEnd})},
      {kNoItems, u"<Report Version=\"1\"/>\r\n"},
  };
  for (const auto& [selection, report] : reports) {
    EXPECT_EQ(SendTool(kDeviceReportRequest, selection, asker), 0);
    ExpectReport(kAsker, report);
  }
  for (const int64_t nobody :
       {int64_t{0}, int64_t{0x7FFFFFF0}, int64_t{0xFFFF}, Observer().Handle(kMainWindow)})
    EXPECT_EQ(SendTool(kDeviceReportRequest, kNoItems, nobody), 0);
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
  EXPECT_EQ(SendTool(kDeviceReportRequest, kNoItems, Observer().Handle("Asks Again")), 0);
  for (int n = 0; n < kMostAtATime; ++n) ExpectReport("Asks Again", u"<Report Version=\"1\"/>\r\n");
  Observer().ExpectNothing();
  SendTool(kDeviceReportRequest, kNoItems, Observer().Handle(kAsker));
  ExpectReport(kAsker, u"<Report Version=\"1\"/>\r\n");
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
