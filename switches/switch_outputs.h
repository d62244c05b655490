// What a press of switch 1 or 2 does outside the tool, and the care that nothing stays pressed.
#pragma once

#include "switches/switch_state.h"

namespace veltra {

void PressSwitch(SwitchIndex index);
// Releases what the press pressed, whatever the setting is by now.
void ReleaseSwitch(SwitchIndex index);

// Once more, when Windows may have kept the first one; nothing for what did not go through Windows' input.
void RepeatRelease(SwitchIndex index, int32_t value);

// Takes back what a press did because its release can no longer come or is no longer the tool's to act on:
// who was told of the press is told of the release. The break that may still follow does nothing.
void ReleaseHeldSwitch(SwitchIndex index);
// The same for both switches, but an application that was given the press still gets its release.
void ReleaseHeldOutputs();

}  // namespace veltra
