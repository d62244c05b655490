// The mouse-filter library, which turns a short press of the middle side button into a right click.
#pragma once

#include <windows.h>

#include <cstdint>

#include "base/handles.h"

namespace veltra {

// The function is null when the library or the export is missing.
struct MouseFilterLibrary {
  UniqueModule module;
  void(WINAPI* MouseFilter)(int32_t mode) = nullptr;
};

// Calls the library with 1 (short press) or 0 (long press). Loads it at the first call; nothing when it is
// missing.
void MouseFilter(int32_t mode);

}  // namespace veltra
