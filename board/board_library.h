// The board vendor's embedded API library.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>

#include "base/handles.h"

namespace veltra {

// The library's records. A text that fills its field has no terminator; the units of the memory numbers are
// the library's own.
struct BoardInfo {
  char boardName[64];
  char manufacturer[64];
  char serialNumber[64];
  char hardwareVersion[64];
  char carrierInfo[64];
  char firmwareVersion[64];
};
struct CpuInfo {
  char name[64];
  int32_t cpuCount;
  int32_t coreCount;
  int32_t threadCount;
};
struct MemoryInfo {
  int32_t total;
  int32_t free;
  int32_t speed;
  char type[32];
};
static_assert(sizeof(BoardInfo) == 384 && sizeof(CpuInfo) == 76 && sizeof(MemoryInfo) == 44);

// The library's functions, __stdcall without decoration; 0 is success. Null when the export is missing, which
// is an ordinary state of a machine: the board's features are off then.
struct BoardLibrary {
  UniqueModule module;
  int32_t(WINAPI* KEApiLibInitialize)() = nullptr;
  int32_t(WINAPI* KEApiLibUnInitialize)() = nullptr;
  int32_t(WINAPI* KEApiI2cXfer)(int32_t bus, uint8_t address, const uint8_t* writeData, uint32_t writeLength,
                                uint8_t* readData, uint32_t* readLength) = nullptr;
  int32_t(WINAPI* KEApiGetBoardInfo)(void* boardInfo) = nullptr;
  int32_t(WINAPI* KEApiGetCpuInfo)(void* cpuInfo) = nullptr;
  int32_t(WINAPI* KEApiGetMemoryInfo)(void* memoryInfo) = nullptr;
};

// Null when there is none. An error line says what is missing.
std::shared_ptr<const BoardLibrary> LoadBoardLibrary();

}  // namespace veltra
