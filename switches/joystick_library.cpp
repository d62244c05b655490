#include "switches/joystick_library.h"

#include "system/library_binding.h"

namespace veltra {

JoystickLibrary LoadJoystickLibrary() {
  JoystickLibrary library;
  Bind(library.module, TEXT("vJoyInterface.dll"), Export{"vJoyEnabled", library.vJoyEnabled},
       Export{"DriverMatch", library.DriverMatch}, Export{"GetVJDStatus", library.GetVJDStatus},
       Export{"AcquireVJD", library.AcquireVJD}, Export{"RelinquishVJD", library.RelinquishVJD},
       Export{"ResetVJD", library.ResetVJD}, Export{"SetBtn", library.SetBtn});
  return library;
}

}  // namespace veltra
