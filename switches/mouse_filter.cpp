#include "switches/mouse_filter.h"

#include "app/app_state.h"

namespace veltra {
void MouseFilter(int32_t mode) {
  MouseFilterLibrary& library = GetAppState().mouseFilter;
  if (!library.MouseFilter) library = LoadMouseFilterLibrary();
  if (library.MouseFilter) library.MouseFilter(mode);
}

}  // namespace veltra
