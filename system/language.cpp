#include "system/language.h"

#include <array>

#include "base/handles.h"
#include "system/system_state.h"
#include "system/windows_version.h"

namespace veltra {
namespace {

constexpr LANGID kEnglish = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_UK);
constexpr size_t kLongestString = 254;

struct FullLanguage {
  LANGID primary;
  LANGID full;
};

constexpr FullLanguage kFullLanguages[] = {
    {7, 0x0407}, {9, 0x0809}, {10, 0x040A}, {12, 0x040C}, {16, 0x0410}, {19, 0x0413}, {29, 0x041D},
};

// A bare primary language becomes the full one of its country; any other identifier stays.
LANGID CompleteLanguage(LANGID language) {
  for (const FullLanguage& row : kFullLanguages)
    if (row.primary == language) return row.full;
  return language;
}

// A block of 16 strings, each after its length: the layout of string resources.
WideView StringInBlock(WideView block, size_t index) {
  for (;;) {
    if (block.empty()) return {};
    const size_t length = std::min<size_t>(static_cast<uint16_t>(block.front()), block.size() - 1);
    if (index-- == 0) return block.substr(1, length);
    block.remove_prefix(1 + length);
  }
}

// In the order in which a resource is looked for.
std::array<LANGID, 3> ResourceLanguages() {
  const LANGID language = CompleteLanguage(System().CurrentLangID);
  return {language, static_cast<LANGID>(MAKELANGID(PRIMARYLANGID(language), SUBLANG_NEUTRAL)), kEnglish};
}

Bytes FindResourceIn(LANGID language, const WCHAR* type, const WCHAR* name) {
  const HMODULE module = System().hInstance;
  const HRSRC resource = FindResourceExW(module, type, name, language);
  if (!resource) return {};
  const auto* data = static_cast<const uint8_t*>(LockResource(LoadResource(module, resource)));
  return data ? Bytes(data, SizeofResource(module, resource)) : Bytes();
}

WideView FindStringIn(LANGID language, UINT id) {
  const Bytes block = FindResourceIn(language, RT_STRING, MAKEINTRESOURCEW(id / 16 + 1));
  return StringInBlock({reinterpret_cast<const WCHAR*>(block.data()), block.size() / sizeof(WCHAR)}, id % 16);
}

}  // namespace

void ApplyUiLanguage(LANGID language) {
  using SetThreadUiLanguage = LANGID(WINAPI*)(LANGID);
  const LANGID complete = CompleteLanguage(language);
  const auto setLanguage =
      FindExport<SetThreadUiLanguage>(GetModuleHandleW(TEXT("kernel32.dll")), "SetThreadUILanguage");
  if (setLanguage && IsWindowsVersionAtLeast(6, 0))
    setLanguage(complete);
  else
    SetThreadLocale(MAKELCID(complete, SORT_DEFAULT));
}

WideText GetCurrentLanguageName() {
  for (const LanguageEntry& entry : System().Languages)
    if (entry.id == System().CurrentLangID) return entry.name;
  return TEXT("english");
}

Bytes FindLocalResource(const WCHAR* type, const WCHAR* name) {
  for (const LANGID language : ResourceLanguages())
    if (const Bytes data = FindResourceIn(language, type, name); !data.empty()) return data;
  return {};
}

Bytes FindLocalResource(const WCHAR* type, WORD id) {
  return FindLocalResource(type, MAKEINTRESOURCEW(id));
}

WideText LoadResString(UINT id) {
  for (const LANGID language : ResourceLanguages())
    if (const WideView text = FindStringIn(language, id); !text.empty())
      return WideText(text.substr(0, kLongestString));
  return {};
}

}  // namespace veltra
