#include "switches/joystick.h"

#include "app/app_state.h"

namespace veltra {
namespace {

// VjdStat of the driver's library.
constexpr int kOwnedByThisProgram = 0;
constexpr int kFree = 1;

}  // namespace

void StartVirtualJoystick() {
  AppState& state = GetAppState();
  state.joystick = LoadJoystickLibrary();
  const JoystickLibrary& library = state.joystick;
  if (!library.IsComplete()) return;
  WORD libraryVersion = 0;
  WORD driverVersion = 0;
  if (!library.vJoyEnabled() || !library.DriverMatch(&libraryVersion, &driverVersion)) return;
  const int status = library.GetVJDStatus(state.VJoyDeviceId);
  if (status != kOwnedByThisProgram && status != kFree) return;
  if (!library.AcquireVJD(state.VJoyDeviceId)) return;
  library.ResetVJD(state.VJoyDeviceId);
  state.VJoyAcquired = true;
}

void AcquireVirtualJoystick() {
  const AppState& state = GetAppState();
  const JoystickLibrary& library = state.joystick;
  if (library.GetVJDStatus(state.VJoyDeviceId) != kFree) return;
  if (library.AcquireVJD(state.VJoyDeviceId)) library.ResetVJD(state.VJoyDeviceId);
}

void SetJoystickButton(bool down, UCHAR button) {
  const AppState& state = GetAppState();
  if (!state.VJoyAcquired) return;
  AcquireVirtualJoystick();
  state.joystick.SetBtn(down ? TRUE : FALSE, state.VJoyDeviceId, button);
}

void StopVirtualJoystick() {
  AppState& state = GetAppState();
  if (state.VJoyAcquired) state.joystick.RelinquishVJD(state.VJoyDeviceId);
  state.VJoyAcquired = false;
}

}  // namespace veltra
