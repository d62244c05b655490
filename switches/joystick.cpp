#include "switches/joystick.h"

#include "switches/switch_state.h"
#include "system/library_binding.h"

namespace veltra {
namespace {

JoystickLibrary LoadJoystickLibrary() {
  JoystickLibrary library;
  Bind(library.module, TEXT("vJoyInterface.dll"), Export{"vJoyEnabled", library.vJoyEnabled},
       Export{"DriverMatch", library.DriverMatch}, Export{"GetVJDStatus", library.GetVJDStatus},
       Export{"AcquireVJD", library.AcquireVJD}, Export{"RelinquishVJD", library.RelinquishVJD},
       Export{"ResetVJD", library.ResetVJD}, Export{"SetBtn", library.SetBtn});
  return library;
}

// VjdStat of the driver's library.
constexpr int kOwnedByThisProgram = 0;
constexpr int kFree = 1;

}  // namespace

void StartVirtualJoystick() {
  Switches().joystick = LoadJoystickLibrary();
  const JoystickLibrary& library = Switches().joystick;
  if (!library.IsComplete()) return;
  WORD libraryVersion = 0;
  WORD driverVersion = 0;
  if (!library.vJoyEnabled() || !library.DriverMatch(&libraryVersion, &driverVersion)) return;
  const int status = library.GetVJDStatus(Switches().VJoyDeviceId);
  if (status != kOwnedByThisProgram && status != kFree) return;
  if (!library.AcquireVJD(Switches().VJoyDeviceId)) return;
  library.ResetVJD(Switches().VJoyDeviceId);
  Switches().VJoyAcquired = true;
}

void AcquireVirtualJoystick() {
  const JoystickLibrary& library = Switches().joystick;
  if (library.GetVJDStatus(Switches().VJoyDeviceId) != kFree) return;
  if (library.AcquireVJD(Switches().VJoyDeviceId)) library.ResetVJD(Switches().VJoyDeviceId);
}

void SetJoystickButton(bool down, UCHAR button) {
  if (!Switches().VJoyAcquired) return;
  AcquireVirtualJoystick();
  Switches().joystick.SetBtn(down ? TRUE : FALSE, Switches().VJoyDeviceId, button);
}

void StopVirtualJoystick() {
  if (Switches().VJoyAcquired) Switches().joystick.RelinquishVJD(Switches().VJoyDeviceId);
}

}  // namespace veltra
