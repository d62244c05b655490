// Windows' default playback device.
#pragma once

#include <cstdint>

namespace veltra {

// Unmutes the default playback device and sets its level in percent. False when one of the steps failed, with
// the failing HRESULT to the debugger and, when `showError`, a message box. A device that cannot be unmuted
// or set shows a box of its own; the program runs on.
bool SetEndpointVolume(int32_t percent, bool showError);

}  // namespace veltra
