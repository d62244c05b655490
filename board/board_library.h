// The board vendor's embedded API library.
#pragma once

#include <windows.h>

#include <cstdint>

#include "base/handles.h"

namespace veltra {

// The library's functions, __stdcall without decoration; 0 is success. Null when the library or the export is
// missing, which is an ordinary state of a machine: the board's features are off then.
struct BoardLibrary {
  UniqueModule module;
  int32_t(WINAPI* KEApiLibInitialize)() = nullptr;
  int32_t(WINAPI* KEApiLibUnInitialize)() = nullptr;
  int32_t(WINAPI* KEApiI2cXfer)(int32_t bus, uint8_t address, const uint8_t* writeData, uint32_t writeLength,
                                uint8_t* readData, uint32_t* readLength) = nullptr;
};

BoardLibrary LoadBoardLibrary();

}  // namespace veltra
