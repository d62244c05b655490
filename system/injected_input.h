// Keys that the tool types.
#pragma once

#include <windows.h>

#include <cstdint>

namespace veltra {

// An error line, once for each such window in front, when Windows will keep keys from it: its program has
// higher rights than the tool.
void NoteUnreachableWindow();

// Presses or releases a key by its virtual-key code (the low byte counts), without modifiers.
void InjectKey(int32_t virtualKey, bool down);

}  // namespace veltra
