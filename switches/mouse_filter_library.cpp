#include "switches/mouse_filter_library.h"

#include "system/library_binding.h"

namespace veltra {

// The 32-bit library decorates the name; 64-bit Windows has no decoration.
MouseFilterLibrary LoadMouseFilterLibrary() {
  MouseFilterLibrary library;
  Bind(library.module, TEXT("portmon.dll"), Export{"_MouseFilter@4", library.MouseFilter},
       Export{"MouseFilter", library.MouseFilter});
  return library;
}

}  // namespace veltra
