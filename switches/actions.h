// The actions of the side buttons.
#pragma once

#include "switches/button_action.h"

namespace veltra {

// Stops a sound that is playing, then does what the record of that index says. A code that is none of
// ActionType does nothing more. What fails is passed over in silence.
void ExecuteButtonAction(size_t index);

// Whether this is a 32-bit program on a 64-bit Windows.
bool IsWow64();

}  // namespace veltra
