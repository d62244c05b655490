// The board behind the vendor's library, keapi.dll: the I2C bus with the devices on it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "simulator/platform.h"

namespace simulator {

struct I2cTransfer {
  uint8_t address = 0;
  std::vector<uint8_t> bytes;
  int32_t error = 0;  // what the tool got; 0 when the device took it
  bool operator==(const I2cTransfer&) const = default;
};

// Transfers that fail: `skip` go well first, then `times` fail.
struct I2cFailure {
  std::optional<uint8_t> address;  // empty: of any device
  int times = 1;
  int skip = 0;
  int32_t error = 5;
};

// A number of the environment, by which a real Windows is told what its library shall refuse; 0 without one.
int32_t FromEnvironment(const char* name);

struct Board {
  int32_t initializeError = FromEnvironment("VELTRA_BOARD_START_ERROR");   // what the next starts return
  int32_t uninitializeError = FromEnvironment("VELTRA_BOARD_STOP_ERROR");  // and the next stops
  int32_t boardInfoError = 0;  // and the questions for the three records
  int32_t cpuInfoError = 0;
  int32_t memoryInfoError = 0;
  int32_t servesMessages = FromEnvironment("VELTRA_BOARD_SERVES_MESSAGES");  // not 0: while it transfers
  size_t longerBy = 0;  // bytes by which its records are longer than those that the tool knows
  bool initialized = false;
  Platform platform;

  std::vector<I2cFailure> failures = {  // tried in this order
      {uint8_t{0x38}, FromEnvironment("VELTRA_BOARD_CODEC_ERRORS")}};
  std::vector<I2cTransfer> transfers;  // every one so far

  // What the devices hold.
  std::map<uint8_t, uint8_t> expander;             // by register
  std::map<uint16_t, std::vector<uint8_t>> codec;  // words by address: 2, 4 or 6 bytes
  std::map<uint8_t, uint8_t> headphoneAmp;         // by register
  std::vector<std::vector<uint8_t>> speakerAmp;    // commands, in order

  // The transfer's result.
  int32_t Transfer(uint8_t address, std::vector<uint8_t> bytes);
};

// The board behind the exports.
Board& TheBoard();

}  // namespace simulator

extern "C" {
int32_t WINAPI KEApiLibInitialize(void);
int32_t WINAPI KEApiLibUnInitialize(void);
int32_t WINAPI KEApiI2cXfer(int32_t bus, uint8_t address, const uint8_t* writeData, uint32_t writeLength,
                            uint8_t* readData, uint32_t* readLength);
int32_t WINAPI KEApiGetBoardInfo(void* boardRecord);
int32_t WINAPI KEApiGetCpuInfo(void* cpuRecord);
int32_t WINAPI KEApiGetMemoryInfo(void* memoryRecord);
}
