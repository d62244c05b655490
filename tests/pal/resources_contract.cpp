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
  EXPECT_EQ(british[15], TEXT("the last of its block"));

  const std::vector<Text> dutch = Block(FIRST_STRING, kDutch);
  ASSERT_EQ(dutch.size(), 16U);
  EXPECT_EQ(dutch[0], TEXT("kleur: caf\u00e9 \u20ac"));
  // The Dutch of a country is served by that of none, and any language by a resource of no language.
  EXPECT_EQ(Block(FIRST_STRING, kDutchOfTheNetherlands), dutch);
  EXPECT_EQ(Block(NEUTRAL_STRING, kBritish), Block(NEUTRAL_STRING, kNeutral));
  EXPECT_EQ(Block(NEUTRAL_STRING, kBritish)[NEUTRAL_STRING % 16], TEXT("of no language"));
}

TEST(Resources, NamesHaveNoCaseAndWhatIsMissingIsNull) {
  const WCHAR* block = MAKEINTRESOURCEW(FIRST_STRING / 16 + 1);
  const std::string content = "some bytes";
  EXPECT_EQ(Content(TEXT("OwnType"), TEXT("nameddata")), std::vector<BYTE>(content.begin(), content.end()));
  EXPECT_EQ(FindResourceExW(nullptr, RT_STRING, block, MAKELANGID(0x07, 1)), nullptr);
  EXPECT_EQ(FindResourceExW(nullptr, RT_STRING, MAKEINTRESOURCEW(999), kBritish), nullptr);
  EXPECT_EQ(FindResourceExW(nullptr, TEXT("NOTYPE"), block, kBritish), nullptr);
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
  EXPECT_EQ(QueryText(TEXT("\\StringFileInfo\\080904b0\\FileDescription")), TEXT("Contract \u00e9"));
  EXPECT_EQ(QueryText(TEXT("\\StringFileInfo\\080904b0\\Empty")), TEXT(""));

  UINT length = 0;
  const auto* translation = static_cast<const WORD*>(Query(TEXT("\\VarFileInfo\\Translation"), length));
  ASSERT_NE(translation, nullptr);
  ASSERT_EQ(length, 4 * sizeof(WORD));
  EXPECT_EQ(std::vector<WORD>(translation, translation + 4), (std::vector<WORD>{0x0809, 1200, 0x0413, 1200}));
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
