#include "tools/probe_text.h"

#include <gtest/gtest.h>

#include "pal/machine/machine.h"

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

}  // namespace
}  // namespace probe
