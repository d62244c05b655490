#include "switches/function_tables.h"

#include <algorithm>
#include <string>

#include "app/folders.h"
#include "app/language.h"

namespace veltra {
namespace {

constexpr INT kNoValue = -1;
constexpr DWORD kNameSize = 127;  // with the terminator
// A damaged file may claim any number; no list is that long.
constexpr UINT kMostFunctions = 10000;

}  // namespace

std::vector<FunctionEntry> LoadFunctionTable(const WCHAR* section) {
  const WideText path = ModuleDirectory() + TEXT("sarvikkey_") + GetCurrentLanguageName() + TEXT(".ini");
  const auto count =
      static_cast<INT>(GetPrivateProfileIntW(section, TEXT("NumOfFunctions"), 0, path.c_str()));
  const UINT last = std::min(static_cast<UINT>(std::max(count, 0)), kMostFunctions);

  std::vector<FunctionEntry> table;
  for (UINT i = 1; i <= last; ++i) {
    const WideText valueKey = FormatText(TEXT("CmdVal%d"), i);
    const auto value =
        static_cast<int32_t>(GetPrivateProfileIntW(section, valueKey.c_str(), kNoValue, path.c_str()));
    if (value == kNoValue) continue;
    const WideText nameKey = FormatText(TEXT("CmdName%d"), i);
    WCHAR name[kNameSize] = {};
    GetPrivateProfileStringW(section, nameKey.c_str(), TEXT(""), name, kNameSize, path.c_str());
    if (name[0]) table.push_back({value, name});
  }
  return table;
}

}  // namespace veltra
