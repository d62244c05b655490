// The board vendor's library, keapi.dll, as far as starting and stopping it.
#pragma once

#include <windows.h>

#include <cstdint>

namespace simulator {

struct Board {
  int32_t initializeError = 0;    // what the next starts return
  int32_t uninitializeError = 0;  // and the next stops
  bool initialized = false;
};

// The board behind the exports.
Board& TheBoard();

}  // namespace simulator

extern "C" {
int32_t WINAPI KEApiLibInitialize(void);
int32_t WINAPI KEApiLibUnInitialize(void);
}
