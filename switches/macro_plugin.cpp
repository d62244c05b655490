#include "switches/macro_plugin.h"

#include <algorithm>
#include <array>

#include "base/ansi_text.h"
#include "switches/switch_state.h"
#include "system/folders.h"
#include "system/injected_input.h"
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

constexpr const WCHAR* kLogTag = TEXT("Macro");
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

bool IsModifier(int32_t value) {
  constexpr int32_t kModifiers[] = {VK_SHIFT,    VK_CONTROL, VK_MENU,  VK_LSHIFT, VK_RSHIFT, VK_LCONTROL,
                                    VK_RCONTROL, VK_LMENU,   VK_RMENU, VK_LWIN,   VK_RWIN};
  return std::ranges::find(kModifiers, value) != std::end(kModifiers);
}

// Alt and the Windows key open a menu when they are pressed and released with no other key between, so one
// that nobody heeds is.
void PressHeldModifiers(bool down) {
  constexpr int32_t kUnassignedKey = 0xE8;
  for (const HeldOutput& held : Switches().heldOutputs) {
    if (!held.value || !IsModifier(*held.value)) continue;
    if (down) InjectKey(*held.value, true);
    for (const bool tapDown : {true, false}) InjectKey(kUnassignedKey, tapDown);
    if (!down) InjectKey(*held.value, false);
  }
}

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
  const std::optional<std::string> ansi = ConvertToAnsi(macro);
  const bool isWhole = ansi && ConvertFromAnsi(*ansi) == macro;
  if (!isWhole) Log().WriteError(kLogTag, TEXT("refused, Windows' code page lacks one of its letters"));
  if (!isWhole || !macros || !macros->RunMacro) {
    MessageBeep(MB_OK);
    return;
  }
  NoteObstacle(GetForegroundWindow());
  PressHeldModifiers(false);
  macros->RunMacro(ansi->c_str(), 0);
  PressHeldModifiers(true);  // which are still held: the plug-in may have let a release through
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
  if (std::string_view(composed).find_first_of("\r\n") == std::string_view::npos)
    return ConvertFromAnsi(composed);
  Log().WriteError(kLogTag, TEXT("refused, the editor gave more than one line"));
  MessageBeep(MB_OK);
  return std::nullopt;
}

}  // namespace veltra
