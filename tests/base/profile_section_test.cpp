#include "base/profile_section.h"

#include <gtest/gtest.h>

#include <string>

namespace veltra {
namespace {

TEST(ProfileSection, ValuesReadAsWindowsGivesThem) {
  struct Row {
    const char* value;
    const char* text;
    int32_t number;
  };
  constexpr Row kRows[] = {
      {"5", "5", 5},
      {" \"8\" ", "8", 8},
      {"'x'", "x", 0},
      {"\"\"a\"\"", "\"a\"", 0},
      {"\"a'", "\"a'", 0},
      {"\"", "\"", 0},
      {"", "", 77},
      {"\"\"", "", 77},
      {"a=b", "a=b", 0},
      {"-1", "-1", -1},
      {"+3", "+3", 3},
      {"0x1F", "0x1F", 31},
      {"-0x10", "-0x10", -16},
      {"0o17", "0o17", 15},
      {"0b101", "0b101", 5},
      {"017", "017", 17},
      {"12abc", "12abc", 12},
      {"- 5", "- 5", 0},
      {"4294967295", "4294967295", -1},
      {"4294967296", "4294967296", 0},
      {"99999999999", "99999999999", 1215752191},
  };
  for (const Row& row : kRows) {
    const ProfileSection section(Widen(std::string(" Key =").append(row.value)));
    EXPECT_EQ(section.Text(Widen("kEY")), Widen(row.text)) << row.value;
    EXPECT_EQ(section.Number(Widen("Key"), 77), row.number) << row.value;
  }
}

TEST(ProfileSection, TheFirstOfANameCountsAndOtherLinesDoNot) {
  const std::string lines("bare\0a=1\0A=2\0;b=3\0=4\0", 22);
  const ProfileSection section(Widen(lines));
  EXPECT_EQ(section.Number(Widen("a"), 0), 1);
  EXPECT_EQ(section.Number(Widen("b"), 9), 9);
  EXPECT_EQ(section.Number(Widen("bare"), 9), 9);
}

TEST(StoredText, IsTheFirstLineWithoutBlanksAndQuotesAroundIt) {
  EXPECT_EQ(AsStored(Widen(" \" 'a \"b' \"\r\n[Button2]")), Widen("a \"b"));
  EXPECT_EQ(AsStored(Widen("'")), Widen("'"));
  EXPECT_EQ(AsStored(Widen(std::string_view("a\0b", 3))), Widen("a"));
  EXPECT_EQ(AsStored(Widen("'' ")), WideText());
}

}  // namespace
}  // namespace veltra
