// Keys that the tool types.
#pragma once

#include <windows.h>

#include <cstdint>

namespace veltra {

// Windows' own desktop has the screen: it is locked, or Windows asks something. It takes no injected input.
bool IsScreenTaken();

// An error line when Windows will keep what is injected from its receiver: the screen is locked, or the
// receiver's program has higher rights than the tool. Once for each reason, until something arrives again.
// Null: whatever lies under the pointer.
void NoteObstacle(HWND receiver);

// Presses or releases a key by its virtual-key code (the low byte counts), without modifiers.
void InjectKey(int32_t virtualKey, bool down);

}  // namespace veltra
