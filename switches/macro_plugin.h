// Macros: run, and put together by the user, through the plug-in of the current language.
#pragma once

#include <windows.h>

#include <optional>

#include "base/handles.h"
#include "base/text.h"

namespace veltra {

// The functions are null when the library or the function is missing. 8-bit texts are in the thread's ANSI
// code page.
struct MacroLibrary {
  UniqueModule module;
  void(WINAPIV* RunMacro)(const char* macro, int mode) = nullptr;  // mode is always 0
  // The buffers hold a model name (256 bytes), the macro (1024) and the path of a file for macros of the user
  // (260). The result belongs to the library; null when the user gives up.
  char*(WINAPIV* ComposeMacro)(HWND owner, char* model, char* macro, char* customFile) = nullptr;
  FARPROC FreeMacroDll = nullptr;  // never called
};

// Loads the plug-in of the current language, else the English one. When neither is there macros do nothing.
void LoadMacroLibrary();

// Lets the plug-in go. One that is at work up the stack, with its editor open, is freed when it has come
// back.
void UnloadMacroLibrary();

// Runs a macro to its end; a modifier that a switch holds down is up meanwhile. A beep without a plug-in, and
// for a macro with a letter that the code page lacks, which has an error line, too.
void RunMacro(WideView macro);

// Lets the user change a macro in the plug-in's editor, modal to `owner`. Empty when the user gave up,
// without a plug-in, and, with a beep and an error line, when the answer is no single line.
std::optional<WideText> ComposeMacro(HWND owner, WideView macro);

}  // namespace veltra
