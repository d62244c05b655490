// The virtual joystick driver's library, vJoyInterface.dll: one device, number 1, with eight buttons.
#pragma once

#include <windows.h>

#include <cstdint>

namespace simulator {

struct Joystick {
  static constexpr UINT kDevice = 1;
  static constexpr UCHAR kButtons = 8;
  enum class Owner { kCaller, kNobody, kAnotherProgram };  // as GetVJDStatus numbers them

  bool enabled = true;
  bool versionsMatch = true;
  bool acquireFails = false;  // free when asked, taken by another program a moment later
  Owner owner = Owner::kNobody;
  uint32_t pressed = 0;  // bit 0 is button 1
};

// The device behind the exports.
Joystick& TheJoystick();

}  // namespace simulator

extern "C" {
BOOL vJoyEnabled(void);
BOOL DriverMatch(WORD* libraryVersion, WORD* driverVersion);
int GetVJDStatus(UINT device);
BOOL AcquireVJD(UINT device);
void RelinquishVJD(UINT device);
BOOL ResetVJD(UINT device);
BOOL SetBtn(BOOL down, UINT device, UCHAR button);
}
