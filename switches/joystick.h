// The virtual joystick, through its driver's library. A missing library, a missing export, a driver that is
// off or another version, a device in use by another program: the joystick stays off and nothing is reported.
#pragma once

#include <windows.h>

#include "base/handles.h"

namespace veltra {

// The library's functions, __cdecl; null when the library or the function is missing.
struct JoystickLibrary {
  UniqueModule module;
  BOOL(WINAPIV* vJoyEnabled)() = nullptr;
  BOOL(WINAPIV* DriverMatch)(WORD* libraryVersion, WORD* driverVersion) = nullptr;
  int(WINAPIV* GetVJDStatus)(UINT device) = nullptr;
  BOOL(WINAPIV* AcquireVJD)(UINT device) = nullptr;
  void(WINAPIV* RelinquishVJD)(UINT device) = nullptr;
  BOOL(WINAPIV* ResetVJD)(UINT device) = nullptr;
  BOOL(WINAPIV* SetBtn)(BOOL down, UINT device, UCHAR button) = nullptr;

  [[nodiscard]] bool IsComplete() const {
    return vJoyEnabled && DriverMatch && GetVJDStatus && AcquireVJD && RelinquishVJD && ResetVJD && SetBtn;
  }
};

// Takes and resets the device; sets VJoyAcquired when that works.
void StartVirtualJoystick();
// Takes the device again when it was given up meanwhile. A device that this program owns is left as it is.
void AcquireVirtualJoystick();
// Presses or releases a button, 1 to 8. Nothing while the device is not acquired.
void SetJoystickButton(bool down, UCHAR button);
// Gives the device back when it was acquired.
void StopVirtualJoystick();

}  // namespace veltra
