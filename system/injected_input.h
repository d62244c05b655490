// Keys that the tool types.
#pragma once

#include <windows.h>

#include <cstdint>

namespace veltra {

// Presses or releases a key by its virtual-key code (the low byte counts), without modifiers.
void InjectKey(int32_t virtualKey, bool down);

}  // namespace veltra
