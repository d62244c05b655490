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
  void StoreUtf16(const Text& text) const {
    std::string bytes = "\xFF\xFE";
    for (const WCHAR unit : text) bytes += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    Store(bytes);
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
  struct Row {
    const WCHAR* key;
    const WCHAR* value;
  };
  constexpr Row kRows[] = {{TEXT("plain"), TEXT("a b")},
                           {TEXT("PLAIN"), TEXT("a b")},
                           {TEXT("spaced"), TEXT("v v")},
                           {TEXT("double"), TEXT("  in ")},
                           {TEXT("single"), TEXT("x")},
                           {TEXT("mixed"), TEXT("\"x'")},
                           {TEXT("twice"), TEXT("\"a\"")},
                           {TEXT("one"), TEXT("\"")},
                           {TEXT("none"), TEXT("")},
                           {TEXT("quoted"), TEXT("")},
                           {TEXT("equals"), TEXT("a=b")},
                           {TEXT("semicolon"), TEXT("a;b")},
                           {TEXT("missing"), TEXT("(default)")},
                           {TEXT("bare"), TEXT("(default)")},
                           {TEXT("later"), TEXT("(default)")}};
  Store(
      "[s]\r\nplain=a b\r\n  spaced \t=  v v\t \r\ndouble=\"  in \"\r\nsingle = 'x' \r\nmixed=\"x'\r\n"
      "twice=\"\"a\"\"\r\none=\"\r\nnone=\r\nquoted=\"\"\r\nequals=a=b\r\nsemicolon=a;b\r\nbare\r\n"
      "plain=second\r\n;plain=comment\r\n[s]\r\nlater=1\r\n");
  for (const Row& row : kRows) EXPECT_EQ(Read(TEXT("s"), row.key), row.value) << "row " << (&row - kRows);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));
}

TEST_F(Profiles, SectionsAreFoundByTheirHeading) {
  Store("k=0\n[a]\nk=1\n [B ] tail\nk=2\n[a b]\nk=3\n[open\nk=4\n[c]");
  EXPECT_EQ(Read(TEXT("A"), TEXT("k")), TEXT("1"));
  EXPECT_EQ(Read(TEXT("b"), TEXT("k")), TEXT("2"));
  EXPECT_EQ(Read(TEXT("a b"), TEXT("k")), TEXT("3"));
  EXPECT_EQ(Read(TEXT("open"), TEXT("k")), TEXT("(default)"));
  EXPECT_EQ(Read(TEXT("c"), TEXT("k")), TEXT("(default)"));
}

TEST_F(Profiles, AValueIsCutToTheBuffer) {
  Store(std::string("[s]\r\nk=").append(1100, 'b').append("\r\n"));
  EXPECT_EQ(Read(TEXT("s"), TEXT("k"), 1023), Text(1022, TEXT('b')));
  EXPECT_EQ(Read(TEXT("s"), TEXT("k"), 1), TEXT(""));
  EXPECT_EQ(Read(TEXT("s"), TEXT("k")), Text(1100, TEXT('b')));
}

TEST_F(Profiles, Numbers) {
  struct Row {
    const char* text;
    UINT number;
  };
  constexpr Row kRows[] = {{"5", 5},          {"-1", 0xFFFFFFFF},
                           {"+3", 3},         {"\"8\"", 8},
                           {"0x1F", 31},      {"-0x10", 0xFFFFFFF0},
                           {"0o17", 15},      {"0b101", 5},
                           {"017", 17},       {"12abc", 12},
                           {"1 2", 1},        {"abc", 0},
                           {"-", 0},          {"- 5", 0},
                           {"", 77},          {"4294967295", 0xFFFFFFFF},
                           {"4294967296", 0}, {"99999999999", 1215752191}};
  for (const Row& row : kRows) {
    Store(std::string("[s]\r\nk=").append(row.text).append("\r\n"));
    EXPECT_EQ(Number(TEXT("k")), row.number) << row.text;
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
  const Text whole(TEXT("a=1\0b=\"two\"\0"), 12);
  const Text found = read(TEXT("S"), 100);
  // Windows leaves comments out.
  if (!WineDeviates("it gives comments too")) {
    EXPECT_EQ(found, whole);
  }
  EXPECT_TRUE(found.starts_with(Text(TEXT("a=1\0"), 4)));
  EXPECT_TRUE(found.ends_with(Text(TEXT("b=\"two\"\0"), 8)));
  EXPECT_EQ(lines[found.size()], 0);
  EXPECT_EQ(read(TEXT("missing"), 100), Text());
  Store(std::string("[s]\r\nlong=").append(200, 'v').append("\r\n"));
  EXPECT_EQ(read(TEXT("s"), 100).size(), 98U);
  Store("[s]\r\nk=1\r\n");
  EXPECT_EQ(read(TEXT("s"), 6).size(), 4U);
}

TEST_F(Profiles, WithoutTheFileTheDefaultCounts) {
  EXPECT_EQ(Read(TEXT("s"), TEXT("k")), TEXT("(default)"));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(Number(TEXT("k")), 77U);
}

TEST_F(Profiles, ANewFileIsInTheCodePage) {
  EXPECT_TRUE(Replace(TEXT("One"), Lines(TEXT("a=1\0b=\0c= x = \x20AC\x0416\0"))));
  EXPECT_TRUE(Replace(TEXT("Two"), Lines(TEXT("a=2\0"))));
  const std::string stored = Stored();
  EXPECT_TRUE(stored.starts_with("[One]\r\na=1\r\nb=\r\nc=")) << stored;
  EXPECT_TRUE(stored.ends_with("x = \x80?\r\n[Two]\r\na=2\r\n")) << stored;
  EXPECT_EQ(Read(TEXT("One"), TEXT("c")), TEXT("x = \x20AC?"));
}

TEST_F(Profiles, AFileInUtf16StaysSo) {
  StoreUtf16(TEXT("[s]\r\nk=\x0416\x20AC\r\n"));
  EXPECT_EQ(Read(TEXT("s"), TEXT("k")), TEXT("\x0416\x20AC"));
  EXPECT_TRUE(Replace(TEXT("t"), Lines(TEXT("k=\x0391\xD83D\xDE00\0"))));
  EXPECT_TRUE(Stored().starts_with("\xFF\xFE"));
  EXPECT_EQ(Read(TEXT("t"), TEXT("k")), TEXT("\x0391\xD83D\xDE00"));
  EXPECT_EQ(Read(TEXT("s"), TEXT("k")), TEXT("\x0416\x20AC"));
}

TEST_F(Profiles, AMarkAloneMakesAFileUtf16) {
  StoreUtf16({});
  EXPECT_TRUE(Replace(TEXT("t"), Lines(TEXT("k=\x0416\0"))));
  EXPECT_EQ(Read(TEXT("t"), TEXT("k")), TEXT("\x0416"));
}

TEST_F(Profiles, ReplacingASectionLeavesTheOthers) {
  Store("[x]\na = 1\n[Y]\nb=2\nc=3\n\n[z]\nd=\"4\"");
  EXPECT_TRUE(Replace(TEXT("y"), Lines(TEXT("n=5\0m= 6\0"))));
  EXPECT_TRUE(Replace(TEXT("new"), Lines(TEXT("k=7\0"))));
  EXPECT_EQ(Read(TEXT("x"), TEXT("a")), TEXT("1"));
  EXPECT_EQ(Read(TEXT("y"), TEXT("n")), TEXT("5"));
  EXPECT_EQ(Read(TEXT("y"), TEXT("m")), TEXT("6"));
  EXPECT_EQ(Read(TEXT("y"), TEXT("b")), TEXT("(default)"));
  EXPECT_EQ(Read(TEXT("z"), TEXT("d")), TEXT("4"));
  EXPECT_EQ(Read(TEXT("new"), TEXT("k")), TEXT("7"));
  EXPECT_TRUE(Replace(TEXT("x"), Lines(TEXT(""))));
  EXPECT_EQ(Read(TEXT("x"), TEXT("a")), TEXT("(default)"));
}

TEST_F(Profiles, ALongLineIsWrittenWhole) {
  const Text value(3000, TEXT('v'));
  EXPECT_TRUE(Replace(TEXT("s"), Text(TEXT("k=")).append(value).append(2, TEXT('\0'))));
  EXPECT_EQ(Read(TEXT("s"), TEXT("k"), 4000), value);
}

TEST_F(Profiles, AFailedWriteLeavesTheFile) {
  Store("[x]\r\na=1\r\n");
  const HANDLE reader =
      CreateFileW(path_.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_FALSE(Replace(TEXT("x"), Lines(TEXT("n=1\0"))));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
  CloseHandle(reader);
  EXPECT_EQ(Stored(), "[x]\r\na=1\r\n");
  EXPECT_FALSE(WritePrivateProfileSectionW(TEXT("x"), TEXT("n=1\0"), TEXT("C:\\no such folder\\a.ini")));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
}

}  // namespace
