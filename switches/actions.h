// The actions of the side buttons.
#pragma once

#include <cstddef>

namespace veltra {

// Stops a sound that is playing, then does what the record of that index (0 to 3) says. A code that is none
// of ActionType does nothing more. What fails is passed over in silence.
void ExecuteButtonAction(size_t index);

}  // namespace veltra
