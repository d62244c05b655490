#include "app/language.h"

#include "app/app_state.h"
#include "app/settings_store.h"
#include "app/windows_version.h"
#include "base/handles.h"

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

// A block of 16 strings, each behind its length: the layout of string resources.
WideView StringInBlock(WideView block, size_t index) {
  for (;;) {
    if (block.empty()) return {};
    const size_t length = std::min<size_t>(static_cast<uint16_t>(block.front()), block.size() - 1);
    if (index-- == 0) return block.substr(1, length);
    block.remove_prefix(1 + length);
  }
}

WideView LoadStringOf(UINT id, LANGID language) {
  const HMODULE module = GetAppState().hInstance;
  const HRSRC resource = FindResourceExW(module, RT_STRING, MAKEINTRESOURCEW(id / 16 + 1), language);
  if (!resource) return {};
  const auto* text = static_cast<const WCHAR*>(LockResource(LoadResource(module, resource)));
  if (!text) return {};
  return StringInBlock({text, SizeofResource(module, resource) / sizeof(WCHAR)}, id % 16);
}

}  // namespace

void SetLanguage(LANGID language) {
  GetAppState().CurrentLangID = language;
  ApplyUiLanguage(language);
  SaveSettings();
}

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
  const AppState& state = GetAppState();
  for (const LanguageEntry& entry : state.Languages)
    if (entry.id == state.CurrentLangID) return entry.name;
  return TEXT("english");
}

WideText LoadResString(UINT id) {
  const LANGID language = CompleteLanguage(GetAppState().CurrentLangID);
  const LANGID neutral = MAKELANGID(PRIMARYLANGID(language), SUBLANG_NEUTRAL);
  for (const LANGID candidate : {language, neutral, kEnglish})
    if (const WideView text = LoadStringOf(id, candidate); !text.empty())
      return WideText(text.substr(0, kLongestString));
  return {};
}

}  // namespace veltra
