// The options dialog: switches, side buttons, audio, radios and USB power.
#pragma once

#include <windows.h>

namespace veltra {

// A private message to the main window: the user asked for a firmware update.
constexpr UINT kFirmwareFileRequest = WM_APP + 0x76E;

// Shows the dialog until the user closes it. Does nothing while it is open already.
void OpenOptionsDialog();

}  // namespace veltra
