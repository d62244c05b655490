#include "tools/probe_text.h"

#include <gtest/gtest.h>

#include "pal/machine/machine.h"
#include "tests/firmware/work_folder.h"

namespace probe {
namespace {

TEST(ProbeText, ReportsReadAsColumns) {
  const pal::Machine machine;  // knows UTF-8
  const auto items = ReadReport(
      u"<Report Version=\"1\">\r\n"
      u"<Item C=\"HW\" K=\"PIC Firmware\" V=\"9&lt;5&amp;amp;&quot;&apos;&gt;\"/>\r\n"
      u"<Item C=\"HW\" K=\"DevSn\" V=\"\"/>\r\n"
      u"<Item C=\"Battery\" K=\"Name\" V=\"\u00E9\u20AC\U0001F600\t\u009B31m\"/>\r\n"
      u"</Report>\r\n");
  ASSERT_TRUE(items);
  EXPECT_EQ(FormatReport(*items),
            "HW\n"
            "  PIC Firmware  9<5&amp;\"'>\n"
            "  DevSn         -\n"
            "Battery\n"
            "  Name          \xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80  31m\n");
}

TEST(ProbeText, OnlyReportsAreRead) {
  const auto none = ReadReport(u"<Report Version=\"1\"/>\r\n");
  ASSERT_TRUE(none);
  EXPECT_EQ(FormatReport(*none), "");
  const std::u16string kWrong[] = {
      u"",
      u"<Report Version=\"1\"",
      u"<Report Version=\"2\"/>\r\n",
      u"<Report Version=\"1\"/>\r\n ",
      u"<Report Version=\"1\">\r\n<Item C=\"HW\" K=\"DevSn\" V=\"1",
      u"<Report Version=\"1\">\r\n<Item C=\"HW\" K=\"DevSn\"/>\r\n</Report>\r\n",
      u"<Report Version=\"1\">\r\n<Item C=\"HW\" K=\"DevSn\" V=\"1\"/>\r\n",
  };
  for (const std::u16string& document : kWrong) EXPECT_FALSE(ReadReport(document)) << &document - kWrong;
}

TEST(ProbeText, NumbersBecomeWords) {
  EXPECT_EQ(FormatPowerSource(1), "battery");
  EXPECT_EQ(FormatPowerSource(4), "mains, no battery");
  EXPECT_EQ(FormatPowerSource(-1), "unknown (-1)");
  const struct {
    int64_t answer;
    const char* text;
  } kVolumes[] = {{0x1000A, "10"}, {0x10064, "100"}, {0x1FFFF, "not set"}, {0, "unknown"}, {-1, "unknown"}};
  for (const auto& c : kVolumes) EXPECT_EQ(FormatVolume(c.answer), c.text);
}

TEST(Toolprobe, SaysWhatItCanWithoutATool) {
  const veltra::WorkFolder folder;
  const struct {
    const char* arguments;
    int code;
    const char* file;
    const char* text;
  } kCases[] = {
      {"--help", 0, "output.txt", "usage: toolprobe"},
      {"nonsense", 2, "errors.txt", "usage: toolprobe"},
      {"--log", 2, "errors.txt", "usage: toolprobe"},
      {"--log none/sent.txt", 2, "errors.txt", "toolprobe: none/sent.txt cannot be written\n"},
      {"battery --xml", 1, "errors.txt", "toolprobe: the device tool is not running\n"},
      {"--log sent.txt", 0, "sent.txt", "the device tool is not running\n\n== Windows\nnot there\n"}};
  for (const auto& c : kCases) {
    EXPECT_EQ(folder.Run(std::string(VELTRA_TOOLPROBE " ") + c.arguments + " >output.txt 2>errors.txt"),
              c.code);
    EXPECT_TRUE(folder.Read(c.file).starts_with(c.text)) << c.arguments;
  }
}

}  // namespace
}  // namespace probe
