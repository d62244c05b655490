#include "switches/mouse_filter.h"

#include "switches/switch_state.h"

namespace veltra {
void MouseFilter(int32_t mode) {
  MouseFilterLibrary& library = Switches().mouseFilter;
  if (!library.MouseFilter) library = LoadMouseFilterLibrary();
  if (library.MouseFilter) library.MouseFilter(mode);
}

}  // namespace veltra
