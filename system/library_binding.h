// Libraries of others that lie beside the program.
#pragma once

#include <windows.h>

#include "base/handles.h"
#include "base/text.h"

namespace veltra {

template <class Function>
struct Export {
  const char* name;
  Function& function;  // null when the library or the export is missing
};
template <class Function>
Export(const char*, Function&) -> Export<Function>;

// From here on a library, and what it needs itself, comes from the program's own directory or that of Windows
// and from nowhere else; and a damaged one raises no box, before which no switch would work. Called before
// everything else.
void LoadOnlyFromSafePlaces();

// Loads a library from the program's own directory, never through the search path. Null when it is missing.
HMODULE LoadOwnLibrary(const WCHAR* fileName);

// Loads a library of Windows; null when it is missing.
HMODULE LoadSystemLibrary(const WCHAR* fileName);

// Loads the library and looks its functions up. Where two exports name one function, the first that is there
// counts. What is missing, with Windows' error, for the log; empty when all is there.
template <class... Functions>
WideText Bind(UniqueModule& module, const WCHAR* fileName, const Export<Functions>&... exports) {
  WideText missing;
  DWORD error = ERROR_SUCCESS;
  const auto look = [&]<class Function>(const Export<Function>& wanted) {
    if (wanted.function) return;
    wanted.function = FindExport<Function>(module.Get(), wanted.name);
    if (wanted.function) return;
    error = GetLastError();
    missing.append(TEXT(" ")).append(Widen(wanted.name));
  };
  module.Reset(LoadOwnLibrary(fileName));
  if (!module) return FormatText(TEXT("%s: Windows error %d"), fileName, GetLastError());
  (look(exports), ...);
  if (missing.empty()) return {};
  return FormatText(TEXT("%s lacks%s: Windows error %d"), fileName, missing, error);
}

}  // namespace veltra
