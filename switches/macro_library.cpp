#include "switches/macro_library.h"

#include "system/folders.h"

namespace veltra {

MacroLibrary LoadMacroLibraryFile(const WideText& fileName) {
  MacroLibrary library;
  library.module.Reset(LoadOwnLibrary(fileName.c_str()));
  const HMODULE module = library.module.Get();
  library.RunMacro = FindExport<decltype(library.RunMacro)>(module, "RunMacro");
  library.ComposeMacro = FindExport<decltype(library.ComposeMacro)>(module, "ComposeMacro");
  library.FreeMacroDll = FindExport<FARPROC>(module, "FreeMacroDll");
  return library;
}

}  // namespace veltra
