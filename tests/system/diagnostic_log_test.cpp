#include "system/diagnostic_log.h"

#include "tests/tool_test.h"

namespace veltra {
namespace {

constexpr std::u16string_view kFolder = u"C:\\Users\\Public\\Documents\\";
const std::u16string kLog = std::u16string(kFolder) + u"DevLog.txt";
const std::u16string kPrevious = std::u16string(kFolder) + u"DevLog_pt2.txt";
const std::u16string kMarker = std::u16string(kFolder) + u"logon.txt";

class Log : public ::testing::Test {
 protected:
  Log() { machine.clock.localTimeAtStart = {2024, 11, 2, 19, 14, 5, 9, 999}; }
  // The log works inside a program, as in the tool.
  void Do(const std::function<void(DiagnosticLog&)>& work) {
    machine.StartProgram([&] {
      DiagnosticLog log{WideText(kFolder)};
      work(log);
      return 0;
    });
    ASSERT_TRUE(machine.clock.AdvanceUntil([&] { return machine.ExitCode().has_value(); }, 1s));
  }
  std::string Content() { return machine.disk.Read(kLog).value_or("none"); }

  pal::Machine machine;
};

TEST_F(Log, Lines) {
  machine.disk.Write(kMarker, "");
  Do([](DiagnosticLog& log) {
    log.WriteDetail(u"Resume", u"Device resuming");
    log.WriteError(u"Err device change", u"Pic port dropped");
    log.Write(u"eighteen character", u"a");
    log.Write(u"nineteen characters", u"b");
    log.Write(u"more than nineteen characters", u"c");
    log.Write(u"", u"\u20AC \u0139");
    log.WriteError(u"Err", u"m");
  });
  EXPECT_EQ(Content(),
            "k19 140509 9 Resume . . . . . .  ***    Device resuming\r\n"
            "k19 140509 9 Err device change.  >_<    Pic port dropped\r\n"
            "k19 140509 9 eighteen character  a\r\n"
            "k19 140509 9 nineteen characters b\r\n"
            "k19 140509 9 more than nineteen characters c\r\n"
            "k19 140509 9  . . . . . . . . .  \xAC \x39\r\n"
            "k19 140509 9 Err. . . . . . . .  >_<    m\r\n");
}

TEST_F(Log, DetailLinesFollowTheMarkerFile) {
  Do([&](DiagnosticLog& log) {
    log.WriteDetail(u"a", u"before");
    machine.disk.Write(kMarker, "anything");
    log.WriteDetail(u"a", u"while");
    machine.disk.SetReadOnly(kMarker, true);
    log.WriteDetail(u"a", u"read-only");
    machine.disk.SetReadOnly(kMarker, false);
    machine.disk.Remove(kMarker);
    log.WriteDetail(u"a", u"after");
  });
  EXPECT_EQ(Content(), "k19 140509 9 a. . . . . . . . .  ***    while\r\n");
}

TEST_F(Log, ALineEndsWhereItIsTooLong) {
  Do([](DiagnosticLog& log) { log.Write(u"t", WideText(65536, 'x') + u"end"); });
  EXPECT_EQ(Content(), "k19 140509 9 t. . . . . . . . .  " + std::string(65536, 'x') + "\r\n");
}

TEST_F(Log, GrowsToItsLimitAndStartsAgain) {
  const std::string full(153600, 'x');
  const auto write = [](DiagnosticLog& log) { log.Write(u"t", u"line"); };
  machine.disk.Write(kLog, full);
  machine.disk.Write(kPrevious, "older");
  Do(write);  // it still fits
  EXPECT_EQ(machine.disk.Read(kPrevious), "older");
  const std::string more = Content();
  machine.Fail("CopyFileW", 1, ERROR_DISK_FULL);  // nothing is cut when it cannot be kept
  Do(write);
  machine.disk.Hold(kLog, true);
  Do(write);
  machine.disk.Hold(kLog, false);
  EXPECT_EQ(Content(), more);
  EXPECT_EQ(machine.disk.Read(kPrevious), "older");
  Do(write);
  EXPECT_EQ(Content(), "k19 140509 9 t. . . . . . . . .  line\r\n");
  EXPECT_EQ(machine.disk.Read(kPrevious), more);
}

}  // namespace
}  // namespace veltra
