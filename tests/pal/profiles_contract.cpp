// Private-profile files: what is read out of one, and what replacing a section leaves of it.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <string_view>

#include "test_window.h"

namespace {

using contract::WineDeviates;
using Text = std::basic_string<WCHAR>;

class Profiles : public testing::Test {
 protected:
  void SetUp() override {
    WCHAR folder[MAX_PATH] = {};
    const DWORD length = GetTempPathW(MAX_PATH, folder);
    path_ = Text(folder, length).append(TEXT("veltra contract.ini"));
    DeleteFileW(path_.c_str());
  }
  void TearDown() override { DeleteFileW(path_.c_str()); }

  void Store(std::string_view bytes) const {
    const HANDLE file = CreateFileW(path_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    DWORD written = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(file);
    ASSERT_EQ(written, bytes.size());
  }
  [[nodiscard]] std::string Stored() const {
    const HANDLE file = CreateFileW(path_.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(file, INVALID_HANDLE_VALUE);
    std::string bytes(10000, '\0');
    DWORD count = 0;
    ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr);
    CloseHandle(file);
    bytes.resize(count);
    return bytes;
  }
  [[nodiscard]] Text Read(const WCHAR* section, const WCHAR* key, DWORD size = 2000) const {
    Text result(size, TEXT('#'));
    const DWORD length =
        GetPrivateProfileStringW(section, key, TEXT("(default)"), result.data(), size, path_.c_str());
    EXPECT_EQ(result[length], 0);
    result.resize(length);
    return result;
  }
  [[nodiscard]] UINT Number(const WCHAR* key, INT otherwise = 77) const {
    return GetPrivateProfileIntW(TEXT("s"), key, otherwise, path_.c_str());
  }
  // `lines` are separated and ended by NUL characters.
  [[nodiscard]] BOOL Replace(const WCHAR* section, std::basic_string_view<WCHAR> lines) const {
    return WritePrivateProfileSectionW(section, Text(lines).c_str(), path_.c_str());
  }

  Text path_;
};

template <size_t size>
std::basic_string_view<WCHAR> Lines(const WCHAR (&text)[size]) {
  return {text, size};
}

TEST_F(Profiles, BlanksAndOnePairOfQuotesAroundAValueDoNotCount) {
  const std::pair<const WCHAR*, const WCHAR*> rows[] = {
      {TEXT("PLAIN"), TEXT("a b")},      {TEXT("spaced"), TEXT("v v")},     {TEXT("double"), TEXT("  in ")},
      {TEXT("single"), TEXT("x")},       {TEXT("mixed"), TEXT("\"x'")},     {TEXT("twice"), TEXT("\"a\"")},
      {TEXT("one"), TEXT("\"")},         {TEXT("none"), TEXT("")},          {TEXT("equals"), TEXT("a=b;c")},
      {TEXT("bare"), TEXT("(default)")}, {TEXT("later"), TEXT("(default)")}};
  Store(
      "[s]\r\nplain=a b\r\n  spaced \t=  v v\t \r\ndouble=\"  in \"\r\nsingle = 'x' \r\nmixed=\"x'\r\n"
      "twice=\"\"a\"\"\r\none=\"\r\nnone=\r\nequals=a=b;c\r\nbare\r\nplain=second\r\n[s]\r\nlater=1\r\n");
  for (const auto& [key, value] : rows) EXPECT_EQ(Read(TEXT("s"), key), value) << Text(key).size();
}

TEST_F(Profiles, SectionsAreFoundByTheirHeading) {
  Store("k=0\n[a]\nk=1\n [B ] tail\nk=2\n[a b]\nk=3\n[open\nk=4\n[c]");
  EXPECT_EQ(Read(TEXT("A"), TEXT("k")), TEXT("1"));
  EXPECT_EQ(Read(TEXT("b"), TEXT("k")), TEXT("2"));
  EXPECT_EQ(Read(TEXT("a b"), TEXT("k")), TEXT("3"));
  EXPECT_EQ(Read(TEXT("c"), TEXT("k")), TEXT("(default)"));
}

TEST_F(Profiles, AValueIsCutToTheBuffer) {
  Store(std::string("[s]\r\nk=").append(1100, 'b').append("\r\n"));
  EXPECT_EQ(Read(TEXT("s"), TEXT("k"), 1023), Text(1022, TEXT('b')));
  EXPECT_EQ(Read(TEXT("s"), TEXT("k"), 1), TEXT(""));
  EXPECT_EQ(Read(TEXT("s"), TEXT("k")), Text(1100, TEXT('b')));
}

TEST_F(Profiles, Numbers) {
  const std::pair<const char*, UINT> rows[] = {{"5", 5},      {"-1", 0xFFFFFFFF}, {"+3", 3},    {"\"8\"", 8},
                                               {"0x1F", 31},  {"0o17", 15},       {"0b101", 5}, {"017", 17},
                                               {"12abc", 12}, {"abc", 0},         {"-", 0},     {"- 5", 0},
                                               {"", 77},      {"4294967296", 0}};
  for (const auto& [text, number] : rows) {
    Store(std::string("[s]\r\nk=").append(text).append("\r\n"));
    EXPECT_EQ(Number(TEXT("k")), number) << text;
  }
  EXPECT_EQ(Number(TEXT("missing"), -1), 0xFFFFFFFFU);
}

TEST_F(Profiles, ASectionIsReadWhole) {
  Store("[t]\r\nx=1\r\n[s]\r\na=1\r\n;no=2\r\n\r\nb=\"two\"\r\n[u]\r\ny=1\r\n");
  WCHAR lines[100];
  const auto read = [&](const WCHAR* section, DWORD size) {
    const DWORD length = GetPrivateProfileSectionW(section, lines, size, path_.c_str());
    return Text(lines, length);
  };
  if (!WineDeviates("it gives comments too")) {
    EXPECT_EQ(read(TEXT("S"), 100), Text(TEXT("a=1\0b=\"two\"\0"), 12));
  }
  EXPECT_EQ(read(TEXT("missing"), 100), Text());
  Store(std::string("[s]\r\nlong=").append(200, 'v').append("\r\n"));
  EXPECT_EQ(read(TEXT("s"), 100).size(), 98U);
}

TEST_F(Profiles, WithoutTheFileTheDefaultCounts) {
  EXPECT_EQ(Read(TEXT("s"), TEXT("k")), TEXT("(default)"));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(Number(TEXT("k")), 77U);
}

TEST_F(Profiles, ANewFileIsInTheCodePageAndOneInUtf16StaysSo) {
  EXPECT_TRUE(Replace(TEXT("One"), Lines(TEXT("a=1\0c= x = \x20AC\x0416\0"))));
  EXPECT_TRUE(Replace(TEXT("Two"), Lines(TEXT("a=2\0"))));
  EXPECT_TRUE(Stored().ends_with("x = \x80?\r\n[Two]\r\na=2\r\n")) << Stored();
  EXPECT_EQ(Read(TEXT("One"), TEXT("c")), TEXT("x = \x20AC?"));
  Store(std::string("\xFF\xFE[\0s\0]\0\n\0k\0=\0\x16\x04", 16));
  EXPECT_TRUE(Replace(TEXT("t"), Lines(TEXT("k=\x0391\xD83D\xDE00\0"))));
  EXPECT_EQ(Read(TEXT("s"), TEXT("k")), TEXT("\x0416"));
  EXPECT_EQ(Read(TEXT("t"), TEXT("k")), TEXT("\x0391\xD83D\xDE00"));
}

TEST_F(Profiles, ReplacingASectionLeavesTheOthers) {
  Store("[x]\na = 1\n[Y]\nb=2\nc=3\n\n[z]\nd=\"4\"");
  EXPECT_TRUE(Replace(TEXT("y"), Lines(TEXT("n=5\0m= 6\0"))));
  EXPECT_TRUE(Replace(TEXT("new"), Lines(TEXT("k=7\0"))));
  EXPECT_EQ(Read(TEXT("x"), TEXT("a")), TEXT("1"));
  EXPECT_EQ(Read(TEXT("y"), TEXT("m")), TEXT("6"));
  EXPECT_EQ(Read(TEXT("y"), TEXT("b")), TEXT("(default)"));
  EXPECT_EQ(Read(TEXT("z"), TEXT("d")), TEXT("4"));
  EXPECT_EQ(Read(TEXT("new"), TEXT("k")), TEXT("7"));
}

TEST_F(Profiles, AFailedWriteLeavesTheFile) {
  Store("[x]\r\na=1\r\n");
  const HANDLE reader =
      CreateFileW(path_.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_FALSE(Replace(TEXT("x"), Lines(TEXT("n=1\0"))));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
  CloseHandle(reader);
  EXPECT_EQ(Stored(), "[x]\r\na=1\r\n");
}

}  // namespace
