// What the board's library says about the board, its processor and its memory.
#pragma once

#include <cstdint>
#include <string>

namespace simulator {

// What the board says of itself. A text that is longer than its field in the record is cut there.
struct Platform {
  std::string boardName = "QX7-i";
  std::string manufacturer = "Brookfield Embedded";
  std::string serialNumber = "BF-0099123";
  std::string hardwareVersion = "B.2";
  std::string carrierInfo = "tablet carrier 4";
  std::string firmwareVersion = "1.13";
  std::string cpuName = "Corvid N2600 @ 1.60GHz";
  int32_t cpuCount = 1;
  int32_t coreCount = 2;
  int32_t threadCount = 4;
  int32_t memoryTotal = 2048;
  int32_t memoryFree = 1187;
  int32_t memorySpeed = 800;
  std::string memoryType = "DDR3";
};

// The library's records. A text that fills its field has no terminator.
struct BoardRecord {
  char texts[6][64];  // in the order of Platform
};
struct CpuRecord {
  char name[64];
  int32_t counts[3];  // processors, cores, threads
};
struct MemoryRecord {
  int32_t numbers[3];  // total, free, speed
  char type[32];
};

}  // namespace simulator
