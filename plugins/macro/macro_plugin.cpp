#include "plugins/macro/macro_plugin.h"

#include <algorithm>

#include "plugins/macro/macro_ansi.h"
#include "plugins/macro/macro_editor.h"
#include "plugins/macro/macro_player.h"
#include "switches/macro_plugin.h"

namespace {

// Just what the tool calls: in 32 bits a call by another convention may seem to work.
static_assert(sizeof(veltra::MacroLibrary{{}, RunMacro, ComposeMacro}) > 0);

HINSTANCE library = nullptr;
char composed[macro::kLongestMacro + 2] = {};

// Nothing may escape into a program that was built by somebody else.
template <class Action>
void Guarded(Action action) {
  try {
    action();
  } catch (...) {
  }
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) library = instance;
  return TRUE;
}

void RunMacro(const char* macro, int /*mode*/) {
  Guarded([macro] {
    const macro::ParsedMacro parsed = macro::ParseMacro(macro::FromAnsi(macro));
    if (parsed.mistake) MessageBeep(MB_OK);
    macro::Play(parsed.steps);
  });
}

char* ComposeMacro(HWND owner, char* /*model*/, char* macro, char* /*customFile*/) {
  char* result = nullptr;
  Guarded([&] {
    const auto edited = macro::EditMacro(library, owner, macro::FromAnsi(macro));
    if (!edited) return;
    const std::string ansi = macro::ToAnsi(*edited);
    const size_t length = std::min(ansi.size(), sizeof(composed) - 1);
    composed[ansi.copy(composed, length)] = '\0';
    result = composed;
  });
  return result;
}

void FreeMacroDll() {}
