// Writes on the board's I2C bus.
#pragma once

#include <cstdint>

#include "base/text.h"

namespace veltra {

// Device addresses as the board library takes them.
constexpr uint8_t kHeadphoneAmpAddress = 0x10;
constexpr uint8_t kExpanderAddress = 0x20;
constexpr uint8_t kSpeakerAmpAddress = 0x30;
constexpr uint8_t kCodecAddress = 0x38;

constexpr int32_t kNoRegister = -1;

// Sends `reg` (0 or more; kNoRegister: none) and the data, and tries `retries` times more after a failure,
// 50, 200, 500, 500, ... ms apart. A transfer that fails for good gives one error line and one balloon.
// Refused at once and silently are all writes on a machine without the board library, and, while the codec
// gate bit of the expander is clear, those to any other device than the expander.
bool I2cWrite(uint8_t address, Bytes data, int32_t reg, int retries);

// From now on all writes together are tried again for 1 s, and then each once: Windows gives a program 2 s
// before the tablet sleeps, and the codec's supply is off by then.
void HurryWrites();
void TakeTimeToWrite();

}  // namespace veltra
