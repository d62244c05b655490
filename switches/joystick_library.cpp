#include "switches/joystick_library.h"

#include "system/folders.h"

namespace veltra {

JoystickLibrary LoadJoystickLibrary() {
  JoystickLibrary library;
  library.module.Reset(LoadOwnLibrary(TEXT("vJoyInterface.dll")));
  const HMODULE module = library.module.Get();
  library.vJoyEnabled = FindExport<decltype(library.vJoyEnabled)>(module, "vJoyEnabled");
  library.DriverMatch = FindExport<decltype(library.DriverMatch)>(module, "DriverMatch");
  library.GetVJDStatus = FindExport<decltype(library.GetVJDStatus)>(module, "GetVJDStatus");
  library.AcquireVJD = FindExport<decltype(library.AcquireVJD)>(module, "AcquireVJD");
  library.RelinquishVJD = FindExport<decltype(library.RelinquishVJD)>(module, "RelinquishVJD");
  library.ResetVJD = FindExport<decltype(library.ResetVJD)>(module, "ResetVJD");
  library.SetBtn = FindExport<decltype(library.SetBtn)>(module, "SetBtn");
  return library;
}

}  // namespace veltra
