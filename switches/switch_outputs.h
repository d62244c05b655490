// What a press of switch 1 or 2 does outside the tool, and the care that nothing stays pressed.
#pragma once

#include "switches/switch_state.h"

namespace veltra {

void PressSwitch(SwitchIndex index);
// Releases what the press pressed, whatever the setting is by now.
void ReleaseSwitch(SwitchIndex index);

// Lets go of what a switch holds down because its release can no longer come or is no longer the tool's to
// act on. The break that may still follow does nothing more than its notification.
void ReleaseHeldSwitch(SwitchIndex index);
void ReleaseHeldSwitches();

}  // namespace veltra
