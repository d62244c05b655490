#include "base/text.h"

#include <gtest/gtest.h>

namespace veltra {
namespace {

std::string Narrow(const WideText& text) {
  std::string narrow;
  for (const WideChar c : text) narrow.push_back(static_cast<char>(c));
  return narrow;
}

template <class... Arguments>
std::string Format(std::string_view format, const Arguments&... arguments) {
  return Narrow(FormatText(Widen(format), arguments...));
}

TEST(FormatText, FormatsOfTheSystem) {
  EXPECT_EQ(Format("%d%% remaining", 66), "66% remaining");
  EXPECT_EQ(Format("%c%02d %02d%02d%02d %d ", 'k', 19, 14, 5, 9, 3), "k19 140509 3 ");
  EXPECT_EQ(Format("OnDeviceChange %08X\r\n", 0x8004U), "OnDeviceChange 00008004\r\n");
  EXPECT_EQ(Format("Slaveaddr=%X,ucOffset=%X,retval=%d", 0x38, -1, -7),
            "Slaveaddr=38,ucOffset=FFFFFFFF,retval=-7");
  EXPECT_EQ(Format("%s: %s", Widen("Port arrived"), Widen("COM2")), "Port arrived: COM2");
  EXPECT_EQ(Format("%5d|%05d|%u", -42, -42, uint32_t{4294967295}), "  -42|-0042|4294967295");
}

TEST(FormatText, WhatIsNoFormatStandsAsWritten) {
  EXPECT_EQ(Format("100%"), "100%");
  EXPECT_EQ(Format("%q %d", 5), "%q 5");
  EXPECT_EQ(Format("%d and %d", 1), "1 and %d");
  EXPECT_EQ(Format("%99999999999999999999d", 1), "%99999999999999999999d");
  EXPECT_EQ(Format("%s", Widen("%d")), "%d");
}

TEST(AsciiCase, OnlyAsciiLettersHaveCase) {
  EXPECT_EQ(UpperAscii(Widen("com\xE9z9")), Widen("COM\xE9Z9"));
  EXPECT_TRUE(EqualIgnoringAsciiCase("sw1MAKE", "Sw1Make"));
  EXPECT_FALSE(EqualIgnoringAsciiCase("Sw1Make ", "Sw1Make"));
  EXPECT_FALSE(StartsWithIgnoringAsciiCase("Ser", "Serial="));
}

}  // namespace
}  // namespace veltra
