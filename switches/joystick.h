// The virtual joystick, through its driver's library. A missing library, a missing export, a driver that is
// off or another version, a device in other hands: the joystick stays off and nothing is reported.
#pragma once

#include <windows.h>

namespace veltra {

// Takes and resets the device; sets VJoyAcquired when that works.
void StartVirtualJoystick();
// Takes the device again when it was given up meanwhile. A device that this program owns is left as it is.
void AcquireVirtualJoystick();
// Presses or lets go a button, 1 to 8. Nothing while the device is not acquired.
void SetJoystickButton(bool down, UCHAR button);
// Gives the device back when it was acquired.
void StopVirtualJoystick();

}  // namespace veltra
