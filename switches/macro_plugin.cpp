#include "switches/macro_plugin.h"

#include <algorithm>
#include <array>

#include "base/ansi_text.h"
#include "switches/switch_state.h"
#include "system/folders.h"
#include "system/language.h"
#include "system/library_binding.h"
#include "system/system_state.h"

namespace veltra {
namespace {

MacroLibrary LoadMacroLibraryFile(const WideText& fileName) {
  MacroLibrary library;
  Bind(library.module, fileName.c_str(), Export{"RunMacro", library.RunMacro},
       Export{"ComposeMacro", library.ComposeMacro}, Export{"FreeMacroDll", library.FreeMacroDll});
  return library;
}

constexpr const WCHAR* kEnglishLibrary = TEXT("macm_english.dll");
constexpr const WCHAR* kCustomMacros = TEXT("custom.mcr");

constexpr size_t kModelSize = 256;
constexpr size_t kMacroSize = 1024;
constexpr size_t kCustomFileSize = 260;

// A text in a buffer of the size that the plug-in expects, cut when it does not fit.
template <size_t size>
struct Buffer {
  explicit Buffer(WideView text) {
    const std::string ansi = ConvertToAnsi(text).value_or("");
    std::copy_n(ansi.begin(), std::min(ansi.size(), size - 1), bytes.begin());
  }
  std::array<char, size> bytes{};
};

}  // namespace

void LoadMacroLibrary() {
  MacroLibrary library = LoadMacroLibraryFile(TEXT("macm_") + GetCurrentLanguageName() + TEXT(".dll"));
  if (!library.module) library = LoadMacroLibraryFile(kEnglishLibrary);
  std::shared_ptr<const MacroLibrary>& macros = Switches().macros;
  macros = library.module ? std::make_shared<const MacroLibrary>(std::move(library)) : nullptr;
}

void UnloadMacroLibrary() {
  Switches().macros.reset();
}

// Both hold the library until they are done: a message that the plug-in lets through may unload it meanwhile.

void RunMacro(WideView macro) {
  const std::shared_ptr<const MacroLibrary> macros = Switches().macros;
  if (!macros || !macros->RunMacro) return;
  if (const std::optional<std::string> ansi = ConvertToAnsi(macro)) macros->RunMacro(ansi->c_str(), 0);
}

std::optional<WideText> ComposeMacro(HWND owner, WideView macro) {
  const std::shared_ptr<const MacroLibrary> macros = Switches().macros;
  if (!macros || !macros->ComposeMacro) return std::nullopt;
  Buffer<kModelSize> model(GetDeviceModelName());
  Buffer<kMacroSize> text(macro);
  Buffer<kCustomFileSize> customFile(DataFolder() + kCustomMacros);
  const char* composed =
      macros->ComposeMacro(owner, model.bytes.data(), text.bytes.data(), customFile.bytes.data());
  if (!composed) return std::nullopt;
  return ConvertFromAnsi(composed);
}

}  // namespace veltra
