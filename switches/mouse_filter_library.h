// The mouse-filter library.
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

}  // namespace veltra
