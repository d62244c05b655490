// Conversions between UTF-16 and 8-bit texts.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

namespace {

using Text = std::basic_string<WCHAR>;

// An empty text when the conversion fails.
std::string Encode(UINT codePage, DWORD flags, const Text& text, BOOL* usedDefault = nullptr) {
  char buffer[64] = {};
  const int length = WideCharToMultiByte(codePage, flags, text.data(), static_cast<int>(text.size()), buffer,
                                         sizeof(buffer), nullptr, usedDefault);
  return std::string(buffer, static_cast<size_t>(length));
}

Text Decode(UINT codePage, const std::string& bytes) {
  WCHAR buffer[64] = {};
  const int length =
      MultiByteToWideChar(codePage, 0, bytes.data(), static_cast<int>(bytes.size()), buffer, 64);
  return Text(buffer, static_cast<size_t>(length));
}

Text Units(std::initializer_list<int> units) {
  Text text;
  for (const int unit : units) text.push_back(static_cast<WCHAR>(unit));
  return text;
}

TEST(TextConversion, AnsiCodePage) {
  // The code page of western Windows: Latin letters, the euro and typographic signs.
  const Text known = Units({'a', 0xE9, 0x20AC, 0x2019, 0x0178, 0x81});
  const std::string bytes = "a\xE9\x80\x92\x9F\x81";
  for (const UINT codePage : {UINT{CP_ACP}, UINT{CP_THREAD_ACP}}) {
    BOOL usedDefault = TRUE;
    EXPECT_EQ(Encode(codePage, 0, known, &usedDefault), bytes);
    EXPECT_FALSE(usedDefault);
    EXPECT_EQ(Decode(codePage, bytes), known);
  }
}

TEST(TextConversion, CharactersThatTheCodePageLacks) {
  struct Row {
    Text text;
    std::string fitted;
    std::string unfitted;
    BOOL usedDefault;
  };
  const Row rows[] = {
      {Units({0x0101, 0x017D, 0xFF21}),
       "a\x8E"
       "A",
       "?\x8E?", FALSE},  // alike letters
      {Units({0x221A, 0x03B1}), "va", "??", FALSE},
      {Units({'x', 0x4E00, 'y'}), "x?y", "x?y", TRUE},
      {Units({0xD83D, 0xDE00}), "??", "??", TRUE},  // one character, two units
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.fitted);
    BOOL usedDefault = FALSE;
    EXPECT_EQ(Encode(CP_ACP, 0, row.text, &usedDefault), row.fitted);
    EXPECT_EQ(usedDefault, row.usedDefault);
    EXPECT_EQ(Encode(CP_ACP, WC_NO_BEST_FIT_CHARS, row.text), row.unfitted);
  }
}

TEST(TextConversion, Utf8) {
  EXPECT_EQ(Encode(CP_UTF8, 0, Units({'a', 0xE9, 0x20AC, 0xD83D, 0xDE00})),
            "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(Encode(CP_UTF8, 0, Units({0xD800, 0x20})), "\xEF\xBF\xBD ");  // half a surrogate pair
}

TEST(TextConversion, LengthsAndRoom) {
  char bytes[8] = {};
  WCHAR units[8] = {};
  EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, TEXT("abc"), 3, nullptr, 0, nullptr, nullptr), 3);
  EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, TEXT("abc"), -1, bytes, 4, nullptr, nullptr), 4);  // with its end
  EXPECT_STREQ(bytes, "abc");
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, nullptr, 0), 4);
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, units, 8), 4);
  EXPECT_EQ(Text(units), TEXT("abc"));
  EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, TEXT("abc"), 3, bytes, 2, nullptr, nullptr), 0);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", 0, units, 8), 0);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
}

}  // namespace
