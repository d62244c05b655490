// Programs of others that lie beside the executable.
#pragma once

#include <cstdint>

#include "base/text.h"

namespace veltra {

// Sets the display's brightness by "nircmd.exe"; does not wait, ignores failures, as that it is missing.
void SetBrightness(int32_t level);

// Sets a 32-bit value under HKEY_LOCAL_MACHINE to 0 by "FlagToggler.exe", which asks the user for elevation.
// Waits for it up to 5 s; failures are ignored. The names hold no double quote and no backslash at their end.
void RunFlagToggler(const WideText& keyName, const WideText& valueName);

// Turns two Windows power settings off that keep the tablet from standing by and starting properly.
void CheckPowerFlags();

}  // namespace veltra
