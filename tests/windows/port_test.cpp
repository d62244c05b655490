#include "tests/windows/tool_fixture.h"

namespace windows_test {
namespace {

constexpr char kLedOff[] = "55 55 0A 53 65 74 53 74 61 74 75 73 4C 65 64 3D 30 C4 04";  // SetStatusLed=0
constexpr char kLed3[] = "55 55 0A 53 65 74 53 74 61 74 75 73 4C 65 64 3D 33 C1 04";    // SetStatusLed=3
constexpr char kReady[] = "55 55 0A 52 65 61 64 79 01 04";
constexpr char kResend[] = "55 55 0A 52 65 73 65 6E 64 95 04";

class PortTest : public ToolTest {
 protected:
  // The tool writes on the line and reads from it.
  void ExpectLiveLine(const Where& where = Where::current()) {
    SendTool(kStatusLedRequest, 3, 0, where);
    Line().Expect(kLed3, where);
    Line().SendReply({}, where);
    AwaitLine(where);
    Line().ExpectNothing(where);
  }
};

TEST_F(PortTest, RemovalClosesTheLinkAndArrivalReopensIt) {
  StartQuietTool();
  EXPECT_EQ(Observer().AnnouncePort(kMainWindow, false, "COM2"), 1);
  EXPECT_FALSE(Line().IsOpen());
  SendTool(kStatusLedRequest, 3);  // skipped, not kept for later
  EXPECT_EQ(Observer().AnnouncePort(kMainWindow, true, "com2"), 1);
  EXPECT_TRUE(Line().IsOpen());
  AwaitAnswer();
  Line().ExpectNothing();
  ExpectLiveLine();

  const std::string log = ReadDataFile("DevLog.txt");
  const char* lines[] = {"Port removed: COM2", "Pic port dropped", "Port arrived: COM2",
                         "Pic port reconnected"};
  size_t at = 0;
  for (const char* line : lines) {
    at = log.find(std::string(" Err device change.  >_<    ") + line + "\r\n", at);
    ASSERT_NE(at, std::string::npos) << line << " is missing, or too early, in:\n" << log;
  }
}

TEST_F(PortTest, ThePortMayComeAndGoManyTimesAsAnotherDeviceEachTime) {
  constexpr int kTimes = 20;
  StartQuietTool();
  const size_t threads = ToolThreadCount();
  for (int i = 0; i < kTimes; ++i) {
    Line().SendText("Sw1Make");  // the port goes while bytes arrive
    Observer().AnnouncePort(kMainWindow, false, "COM2");
    PullLine();
    PlugLine();
    Observer().AnnouncePort(kMainWindow, true, "COM2");
    ExpectLiveLine();
  }
  WaitUntil("no thread is left behind", [&] { return ToolThreadCount() == threads; });
}

TEST_F(PortTest, OtherPortsLeaveTheLinkAlone) {
  StartQuietTool();
  for (const char* port : {"COM3", "COM20", "COM", "LPT2"}) {
    Observer().AnnouncePort(kMainWindow, false, port);
    AwaitLogLine(std::string("Port removed: ") + port);
    Observer().AnnouncePort(kMainWindow, true, port);
    AwaitLogLine(std::string("Port arrived: ") + port);
  }
  ExpectLiveLine();
  EXPECT_EQ(ReadDataFile("DevLog.txt").find("Pic port"), std::string::npos);
}

TEST_F(PortTest, ALineThatVanishedIsReopenedWhenThePortArrives) {
  GTEST_SKIP() << kWineWaitsForEver;
  StartQuietTool();
  PullLine();
  AwaitLogLine("Pic port lost without notice");
  PlugLine();
  Observer().AnnouncePort(kMainWindow, true, "COM2");
  ExpectLiveLine();
}

TEST_F(PortTest, ResumeAsksTheControllerAgain) {
  Set("WakeupDelay", 0);
  StartQuietTool();
  EXPECT_EQ(SendTool(kPowerBroadcast, kResumeAutomatic), 1);  // without a suspend before it
  AwaitAnswer();
  Line().ExpectNothing();
  EXPECT_EQ(SendTool(kPowerBroadcast, kSuspend), 1);
  EXPECT_EQ(SendTool(kPowerBroadcast, kResumeAutomatic), 1);
  Line().Expect(kReady);
  Line().SendReply({});
  ExpectLiveLine();
}

TEST_F(PortTest, ACorruptedFrameIsAskedForAgain) {
  Set("Sw1CmdVal", -1);
  StartQuietTool();
  Line().SendRaw("55 55 0A 53 77 31 4D 61 6B 65 7E 04");  // Sw1Make with a wrong checksum
  Line().Expect(kResend);
  Observer().ExpectNothing();
  Line().SendRaw("00 04 55 55 0A 53 77 31 4D 61 6B 65 7D 04");  // rubbish in front of a good one
  Line().Expect(kResend);
  Observer().Expect("mouse left down");

  SendTool(kStatusLedRequest, 7);
  Line().Expect(kLedOff);
  Line().SendText("Resend");
  Line().Expect(kLedOff);
}

}  // namespace
}  // namespace windows_test
