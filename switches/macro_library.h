// The macro plug-in's library.
#pragma once

#include <windows.h>

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

}  // namespace veltra
