#include "switches/function_tables.h"

#include <algorithm>

#include "base/profile_section.h"
#include "system/folders.h"
#include "system/language.h"

namespace veltra {
namespace {

constexpr int32_t kNoValue = -1;
constexpr size_t kLongestName = 126;
// A damaged file may claim any number; no list is that long.
constexpr int32_t kMostFunctions = 10000;

// Empty when there is no such file or section.
ProfileSection ReadSection(const WCHAR* section, const WideText& path) {
  constexpr DWORD kFirstSize = 0x4000;
  constexpr DWORD kLargestSize = 0x400000;
  constexpr DWORD kCutMark = 2;  // a result that is this much shorter than the buffer was cut
  WideText lines;
  for (DWORD size = kFirstSize; size <= kLargestSize; size *= 2) {
    lines.resize(size);
    const DWORD length = GetPrivateProfileSectionW(section, lines.data(), size, path.c_str());
    lines.resize(length);
    if (length < size - kCutMark) break;
  }
  return ProfileSection(lines);
}

}  // namespace

std::vector<FunctionEntry> LoadFunctionTable(const WCHAR* section) {
  const WideText path = ModuleDirectory() + TEXT("sarvikkey_") + GetCurrentLanguageName() + TEXT(".ini");
  const ProfileSection lines = ReadSection(section, path);
  const int32_t last = std::min(lines.Number(TEXT("NumOfFunctions"), 0), kMostFunctions);

  std::vector<FunctionEntry> table;
  for (int32_t i = 1; i <= last; ++i) {
    const int32_t value = lines.Number(FormatText(TEXT("CmdVal%d"), i), kNoValue);
    const WideText name = lines.Text(FormatText(TEXT("CmdName%d"), i)).substr(0, kLongestName);
    if (value != kNoValue && !name.empty()) table.push_back({value, name});
  }
  return table;
}

}  // namespace veltra
