// The library of the virtual joystick's driver.
#pragma once

#include <windows.h>

#include "base/handles.h"

namespace veltra {

// The library's functions, __cdecl; null when the library or the function is missing.
struct JoystickLibrary {
  UniqueModule module;
  BOOL(__cdecl* vJoyEnabled)() = nullptr;
  BOOL(__cdecl* DriverMatch)(WORD* libraryVersion, WORD* driverVersion) = nullptr;
  int(__cdecl* GetVJDStatus)(UINT device) = nullptr;
  BOOL(__cdecl* AcquireVJD)(UINT device) = nullptr;
  void(__cdecl* RelinquishVJD)(UINT device) = nullptr;
  BOOL(__cdecl* ResetVJD)(UINT device) = nullptr;
  BOOL(__cdecl* SetBtn)(BOOL down, UINT device, UCHAR button) = nullptr;

  [[nodiscard]] bool IsComplete() const {
    return vJoyEnabled && DriverMatch && GetVJDStatus && AcquireVJD && RelinquishVJD && ResetVJD && SetBtn;
  }
};

JoystickLibrary LoadJoystickLibrary();

}  // namespace veltra
