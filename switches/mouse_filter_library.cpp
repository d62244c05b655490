#include "switches/mouse_filter_library.h"

#include "system/folders.h"

namespace veltra {

// The 32-bit library decorates the name; 64-bit Windows has no decoration.
MouseFilterLibrary LoadMouseFilterLibrary() {
  MouseFilterLibrary library;
  library.module.Reset(LoadOwnLibrary(TEXT("portmon.dll")));
  for (const char* name : {"_MouseFilter@4", "MouseFilter"})
    if (!library.MouseFilter)
      library.MouseFilter = FindExport<decltype(library.MouseFilter)>(library.module.Get(), name);
  return library;
}

}  // namespace veltra
