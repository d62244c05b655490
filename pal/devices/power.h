// What the program asked of Windows' power management.
#pragma once

#include <windows.h>

namespace pal {

struct Power {
  DWORD executionState = ES_CONTINUOUS;
  bool mayShutDown = false;  // the program has enabled that privilege
};

}  // namespace pal
