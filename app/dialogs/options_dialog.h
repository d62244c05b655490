// The options dialog: switches, side buttons, audio, radios and USB power.
#pragma once

#include <windows.h>

namespace veltra {

// Shows the dialog until the user closes it. Does nothing while it is open already.
void OpenOptionsDialog();

}  // namespace veltra
