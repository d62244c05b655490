// The program's own sounds.
#pragma once

#include <windows.h>

namespace veltra {

// Plays a WAVE resource; returns at once, or when the sound is over. A sound that cannot be played is
// skipped.
void PlayResourceSound(WORD id, bool waits);

}  // namespace veltra
