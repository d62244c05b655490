// Macros: run, and put together by the user, through the plug-in of the current language.
#pragma once

#include <windows.h>

#include <optional>

#include "base/text.h"

namespace veltra {

// Loads the plug-in of the current language, else the English one. When neither is there macros do nothing.
void LoadMacroLibrary();

// Lets the plug-in go. One that is at work up the stack, with its editor open, is freed when it has come
// back.
void UnloadMacroLibrary();

// Runs a macro to its end. Nothing without a plug-in.
void RunMacro(WideView macro);

// Lets the user change a macro in the plug-in's editor, modal to `owner`. Empty when the user gave up, or
// without a plug-in.
std::optional<WideText> ComposeMacro(HWND owner, WideView macro);

}  // namespace veltra
