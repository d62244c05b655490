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

// A value of the program's version information, whose length counts such units; "nothing" when there is none.
Text Version(const WCHAR* path, UINT unit = 1) {
  WCHAR program[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  DWORD handle = 1;
  std::vector<BYTE> block(GetFileVersionInfoSizeW(program, &handle));
  void* value = nullptr;
  UINT length = 0;
  if (!GetFileVersionInfoW(program, 0, static_cast<DWORD>(block.size()), block.data()) ||
      !VerQueryValueW(block.data(), path, &value, &length))
    return TEXT("nothing");
  return Text(static_cast<const WCHAR*>(value), length / unit);
}

TEST(VersionInformation, TextsAndNumbers) {
  EXPECT_EQ(Version(TEXT("\\StringFileInfo\\080904b0\\FileVersion")), Text(TEXT("1.2.3.4\0"), 8));
  EXPECT_EQ(Version(TEXT("\\StringFileInfo\\080904b0\\FileDescription")),
            Text(TEXT("Contract \u00e9\0"), 11));
  EXPECT_EQ(Version(TEXT("\\StringFileInfo\\040904b0\\FileVersion")), TEXT("nothing"));
  EXPECT_EQ(Version(TEXT("\\StringFileInfo\\080904b0\\NoSuchName")), TEXT("nothing"));
  EXPECT_EQ(Version(TEXT("\\VarFileInfo\\Translation"), sizeof(WCHAR)),
            Text(TEXT("\x0809\x04B0\x0413\x04B0")));
}

}  // namespace
