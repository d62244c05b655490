// The library of the virtual joystick's driver.
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

}  // namespace veltra
