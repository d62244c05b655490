// What the program asked of Windows' power management.
#pragma once

#include <windows.h>

namespace pal {

struct Power {
  bool mayShutDown = false;  // the program has enabled that privilege
};

}  // namespace pal
