// What a press of switch 1 or 2 does outside the tool, and the care that nothing stays pressed.
#pragma once

#include "switches/switch_state.h"

namespace veltra {

void PressSwitch(SwitchIndex index);
// Releases what the press pressed, whatever the setting is by now.
void ReleaseSwitch(SwitchIndex index);

// While Windows' own desktop has the screen it takes no input, and so no release. What is held when the
// screen is locked may be released before it is unlocked.
void NoteLockedScreen();
// Releases once more what was released meanwhile. Windows does not tell when a desktop for a question of its
// own goes, so every event of a button does this, and the timer of the battery.
void RepeatLostReleases();
// The screen is unlocked: the same, and what goes through Windows' input and is held now. Nothing else was
// locked.
void ReleaseAfterLock();

// Takes back what a press did because its release can no longer come or is no longer the tool's to act on:
// who was told of the press is told of the release. The break that may still follow does nothing.
void ReleaseHeldSwitch(SwitchIndex index);
// The same for both switches, but an application that was given the press still gets its release.
void ReleaseHeldOutputs();

}  // namespace veltra
