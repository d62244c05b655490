#include "switches/macro_library.h"

#include "system/library_binding.h"

namespace veltra {

MacroLibrary LoadMacroLibraryFile(const WideText& fileName) {
  MacroLibrary library;
  Bind(library.module, fileName.c_str(), Export{"RunMacro", library.RunMacro},
       Export{"ComposeMacro", library.ComposeMacro}, Export{"FreeMacroDll", library.FreeMacroDll});
  return library;
}

}  // namespace veltra
