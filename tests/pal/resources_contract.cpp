// The program's resources, found by language, and its version information.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "tests/pal/contract_ids.h"

namespace {

using Text = std::basic_string<WCHAR>;

constexpr LANGID kNeutral = MAKELANGID(LANG_NEUTRAL, SUBLANG_NEUTRAL);
constexpr LANGID kBritish = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_UK);
constexpr LANGID kDutch = MAKELANGID(LANG_DUTCH, SUBLANG_NEUTRAL);
constexpr LANGID kDutchOfTheNetherlands = MAKELANGID(LANG_DUTCH, SUBLANG_DUTCH);

std::vector<BYTE> Content(const WCHAR* type, const WCHAR* name, LANGID language = kNeutral) {
  const HRSRC resource = FindResourceExW(nullptr, type, name, language);
  if (!resource) return {};
  const auto* bytes = static_cast<const BYTE*>(LockResource(LoadResource(nullptr, resource)));
  return {bytes, bytes + SizeofResource(nullptr, resource)};
}

// Writes numbers and texts as Windows keeps them.
class Expected {
 public:
  Expected& Word(unsigned value) {
    bytes_.push_back(static_cast<BYTE>(value));
    bytes_.push_back(static_cast<BYTE>(value >> 8));
    return *this;
  }
  Expected& Dword(unsigned value) { return Word(value).Word(value >> 16); }
  Expected& String(const Text& text) {
    for (const WCHAR unit : text) Word(unit);
    return Word(0);
  }
  Expected& Align() {
    bytes_.resize((bytes_.size() + 3) / 4 * 4);
    return *this;
  }
  [[nodiscard]] const std::vector<BYTE>& Bytes() const { return bytes_; }

 private:
  std::vector<BYTE> bytes_;
};

// All 16 strings of the block that holds the id.
std::vector<Text> Block(UINT id, LANGID language) {
  const std::vector<BYTE> bytes = Content(RT_STRING, MAKEINTRESOURCEW(id / 16 + 1), language);
  Text units(bytes.size() / sizeof(WCHAR), 0);
  std::memcpy(units.data(), bytes.data(), units.size() * sizeof(WCHAR));
  std::vector<Text> strings;
  for (size_t at = 0; at < units.size(); at += 1 + strings.back().size())
    strings.push_back(units.substr(at + 1, units[at]));
  return strings;
}

TEST(Resources, StringsComeInTheLanguageThatIsAskedFor) {
  const std::vector<Text> british = Block(FIRST_STRING, kBritish);
  ASSERT_EQ(british.size(), 16U);
  EXPECT_EQ(british[0], TEXT("colour"));
  EXPECT_EQ(british[1], TEXT("say \"yes\", a\ttab, a \\, two\nlines"));
  EXPECT_EQ(british[2], TEXT("two halves"));
  EXPECT_EQ(british[3], TEXT(""));
  EXPECT_EQ(british[15], TEXT("the last of its block"));

  const std::vector<Text> dutch = Block(FIRST_STRING, kDutch);
  ASSERT_EQ(dutch.size(), 16U);
  EXPECT_EQ(dutch[0], TEXT("kleur: caf\u00e9 \u20ac"));
  EXPECT_EQ(dutch[15], TEXT(""));
  // The Dutch of a country is served by that of none, and any language by a resource of no language.
  EXPECT_EQ(Block(FIRST_STRING, kDutchOfTheNetherlands), dutch);
  EXPECT_EQ(Block(NEUTRAL_STRING, kBritish), Block(NEUTRAL_STRING, kNeutral));
  EXPECT_EQ(Block(NEUTRAL_STRING, kBritish)[NEUTRAL_STRING % 16], TEXT("of no language"));
}

TEST(Resources, WhatIsMissingIsToldApart) {
  const LANGID german = MAKELANGID(LANG_GERMAN, 1);
  const WCHAR* block = MAKEINTRESOURCEW(FIRST_STRING / 16 + 1);
  EXPECT_EQ(FindResourceExW(nullptr, RT_STRING, block, german), nullptr);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_RESOURCE_LANG_NOT_FOUND});
  EXPECT_EQ(FindResourceExW(nullptr, RT_STRING, MAKEINTRESOURCEW(999), kBritish), nullptr);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_RESOURCE_NAME_NOT_FOUND});
  EXPECT_EQ(FindResourceExW(nullptr, TEXT("NOTYPE"), block, kNeutral), nullptr);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_RESOURCE_TYPE_NOT_FOUND});
}

TEST(Resources, LoadStringCutsWhatDoesNotFit) {
  WCHAR buffer[32] = {};
  EXPECT_EQ(LoadStringW(nullptr, NEUTRAL_STRING, buffer, 32), 14);
  EXPECT_EQ(Text(buffer), TEXT("of no language"));
  EXPECT_EQ(LoadStringW(nullptr, NEUTRAL_STRING, buffer, 6), 5);
  EXPECT_EQ(Text(buffer), TEXT("of no"));
  EXPECT_EQ(LoadStringW(nullptr, 9999, buffer, 32), 0);
  // No room at all: the buffer takes a pointer to the resource, whose text has no terminator.
  const WCHAR* text = nullptr;
  const int length = LoadStringW(nullptr, NEUTRAL_STRING, reinterpret_cast<WCHAR*>(&text), 0);
  ASSERT_EQ(length, 14);
  EXPECT_EQ(Text(text, 14), TEXT("of no language"));
}

TEST(Resources, NamesAndNumbers) {
  const std::string content = "some bytes";
  const std::vector<BYTE> bytes(content.begin(), content.end());
  EXPECT_EQ(Content(RT_RCDATA, MAKEINTRESOURCEW(CONTRACT_DATA)), bytes);
  EXPECT_EQ(Content(TEXT("#10"), TEXT("#171")), bytes);
  EXPECT_EQ(Content(TEXT("OwnType"), TEXT("nameddata")), bytes);
  EXPECT_NE(FindResourceExW(nullptr, TEXT("OWNTYPE"), TEXT("NAMEDDATA"), kNeutral), nullptr);
}

TEST(Resources, MenusAreTemplates) {
  constexpr unsigned kPopup = 0x10;
  constexpr unsigned kLast = 0x80;
  Expected menu;
  menu.Word(0).Word(0);
  menu.Word(kPopup | kLast).String(TEXT("Pop&up"));
  menu.Word(0).Word(127).String(TEXT("&First\tF1"));
  menu.Word(0).Word(0).String(TEXT(""));
  menu.Word(kPopup).String(TEXT("Inner"));
  menu.Word(0x0008 | 0x0001 | kLast).Word(40233).String(TEXT("D\u00e9ja"));
  menu.Word(kLast).Word(128).String(TEXT("&Last"));
  EXPECT_EQ(Content(RT_MENU, MAKEINTRESOURCEW(CONTRACT_MENU)), menu.Bytes());
}

TEST(Resources, DialogsAreExtendedTemplates) {
  constexpr unsigned kFrame = 0x80C800C0;  // modal frame, own font, popup, caption, system menu
  constexpr unsigned kVisibleChild = 0x50000000;
  constexpr unsigned kTabStop = 0x00010000;
  Expected dialog;
  dialog.Word(1).Word(0xFFFF).Dword(0).Dword(0).Dword(kFrame);
  dialog.Word(3).Word(10).Word(20).Word(200).Word(100);
  dialog.Word(0).Word(0).String(TEXT("Title"));
  dialog.Word(8).Word(400).Word(0x0100).String(TEXT("MS Shell Dlg"));
  dialog.Align().Dword(0).Dword(0).Dword(kVisibleChild);
  dialog.Word(1).Word(2).Word(30).Word(8).Dword(0xFFFFFFFF);
  dialog.Word(0xFFFF).Word(0x82).String(TEXT("Text")).Word(0);
  dialog.Align().Dword(0).Dword(0).Dword(kVisibleChild | kTabStop | 1);
  dialog.Word(3).Word(4).Word(50).Word(14).Dword(IDOK);
  dialog.Word(0xFFFF).Word(0x80).String(TEXT("OK")).Word(0);
  dialog.Align().Dword(0).Dword(0).Dword(kVisibleChild | kTabStop | 1);
  dialog.Word(5).Word(6).Word(60).Word(16).Dword(1001);
  dialog.String(TEXT("MSCTLS_TRACKBAR32")).String(TEXT("")).Word(0);
  EXPECT_EQ(Content(RT_DIALOG, MAKEINTRESOURCEW(CONTRACT_DIALOG)), dialog.Bytes());
}

TEST(Resources, IconsAreGroupsOfPictures) {
  const std::vector<BYTE> group = Content(RT_GROUP_ICON, MAKEINTRESOURCEW(CONTRACT_ICON));
  constexpr size_t kHeader = 6;
  constexpr size_t kEntry = 14;
  ASSERT_GE(group.size(), kHeader + kEntry);
  EXPECT_EQ(group[2], 1);  // an icon
  const size_t count = group[4];
  ASSERT_EQ(group.size(), kHeader + count * kEntry);
  for (size_t i = 0; i < count; ++i) {
    const BYTE* entry = group.data() + kHeader + i * kEntry;
    DWORD size = 0;
    WORD id = 0;
    std::memcpy(&size, entry + 8, sizeof(size));
    std::memcpy(&id, entry + 12, sizeof(id));
    EXPECT_EQ(Content(RT_ICON, MAKEINTRESOURCEW(id)).size(), size);
    EXPECT_GT(size, 0U);
  }
}

class VersionInformation : public testing::Test {
 protected:
  void SetUp() override {
    WCHAR path[MAX_PATH] = {};
    ASSERT_NE(GetModuleFileNameW(nullptr, path, MAX_PATH), 0U);
    DWORD handle = 1;
    block_.resize(GetFileVersionInfoSizeW(path, &handle));
    ASSERT_FALSE(block_.empty());
    ASSERT_TRUE(GetFileVersionInfoW(path, 0, static_cast<DWORD>(block_.size()), block_.data()));
  }

  // Null when there is no such value.
  const void* Query(const WCHAR* path, UINT& length) const {
    void* value = nullptr;
    return VerQueryValueW(block_.data(), path, &value, &length) ? value : nullptr;
  }
  [[nodiscard]] Text QueryText(const WCHAR* path) const {
    UINT length = 0;
    const auto* text = static_cast<const WCHAR*>(Query(path, length));
    if (!text || length == 0) return TEXT("nothing");
    EXPECT_EQ(text[length - 1], 0);
    return Text(text, length - 1);
  }

 private:
  std::vector<BYTE> block_;
};

TEST_F(VersionInformation, TextsAndNumbers) {
  EXPECT_EQ(QueryText(TEXT("\\StringFileInfo\\080904b0\\FileVersion")), TEXT("1.2.3.4"));
  EXPECT_EQ(QueryText(TEXT("\\STRINGFILEINFO\\080904B0\\fileVersion")), TEXT("1.2.3.4"));
  EXPECT_EQ(QueryText(TEXT("\\StringFileInfo\\080904b0\\FileDescription")), TEXT("Contract \u00e9"));
  EXPECT_EQ(QueryText(TEXT("\\StringFileInfo\\080904b0\\Empty")), TEXT(""));

  UINT length = 0;
  const auto* translation = static_cast<const WORD*>(Query(TEXT("\\VarFileInfo\\Translation"), length));
  ASSERT_NE(translation, nullptr);
  ASSERT_EQ(length, 4 * sizeof(WORD));
  EXPECT_EQ(std::vector<WORD>(translation, translation + 4), (std::vector<WORD>{0x0809, 1200, 0x0413, 1200}));

  const auto* fixed = static_cast<const VS_FIXEDFILEINFO*>(Query(TEXT("\\"), length));
  ASSERT_NE(fixed, nullptr);
  ASSERT_EQ(length, sizeof(VS_FIXEDFILEINFO));
  EXPECT_EQ(fixed->dwSignature, 0xFEEF04BDU);
  EXPECT_EQ(fixed->dwFileVersionMS, 0x00010002U);
  EXPECT_EQ(fixed->dwFileVersionLS, 0x00030004U);
  EXPECT_EQ(fixed->dwProductVersionMS, 0x00050006U);
  EXPECT_EQ(fixed->dwFileType, 1U);
}

TEST_F(VersionInformation, MissingValuesAndFiles) {
  UINT length = 0;
  EXPECT_EQ(Query(TEXT("\\StringFileInfo\\040904b0\\FileVersion"), length), nullptr);
  EXPECT_EQ(Query(TEXT("\\StringFileInfo\\080904b0\\NoSuchName"), length), nullptr);
  DWORD handle = 0;
  EXPECT_EQ(GetFileVersionInfoSizeW(TEXT("C:\\no such program.exe"), &handle), 0U);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

}  // namespace
