#include "switches/mouse_filter.h"

#include "switches/switch_state.h"
#include "system/library_binding.h"

namespace veltra {
namespace {

// The 32-bit library decorates the name; 64-bit Windows has no decoration.
MouseFilterLibrary LoadMouseFilterLibrary() {
  MouseFilterLibrary library;
  Bind(library.module, TEXT("portmon.dll"), Export{"_MouseFilter@4", library.MouseFilter},
       Export{"MouseFilter", library.MouseFilter});
  return library;
}

}  // namespace

void MouseFilter(int32_t mode) {
  MouseFilterLibrary& library = Switches().mouseFilter;
  if (!library.MouseFilter) library = LoadMouseFilterLibrary();
  if (library.MouseFilter) library.MouseFilter(mode);
}

}  // namespace veltra
