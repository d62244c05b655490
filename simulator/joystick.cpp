#include "simulator/joystick.h"

#include <string>

#include "simulator/report.h"

using simulator::Joystick;
using simulator::TheJoystick;

namespace {

constexpr int kMissing = 3;  // GetVJDStatus: there is no such device

void ReportCall(const std::string& call) {
  simulator::Report("joystick", call);
}

BOOL ReportResult(const std::string& call, bool result) {
  ReportCall(call + (result ? " yes" : " no"));
  return result ? TRUE : FALSE;
}

bool IsOurs(UINT device) {
  return device == Joystick::kDevice && TheJoystick().owner == Joystick::Owner::kCaller;
}

}  // namespace

Joystick& simulator::TheJoystick() {
  static Joystick joystick;
  return joystick;
}

BOOL vJoyEnabled() {
  return ReportResult("enabled", TheJoystick().enabled);
}

BOOL DriverMatch(WORD* libraryVersion, WORD* driverVersion) {
  constexpr WORD kLibrary = 0x0205;
  const bool match = TheJoystick().versionsMatch;
  *libraryVersion = kLibrary;
  *driverVersion = match ? kLibrary : WORD{0x0201};
  return ReportResult("versions match", match);
}

int GetVJDStatus(UINT device) {
  const int status = device == Joystick::kDevice ? static_cast<int>(TheJoystick().owner) : kMissing;
  ReportCall("status of " + std::to_string(device) + " is " + std::to_string(status));
  return status;
}

BOOL AcquireVJD(UINT device) {
  Joystick& joystick = TheJoystick();
  const bool free = device == Joystick::kDevice && joystick.owner != Joystick::Owner::kAnotherProgram;
  const bool acquired = free && !joystick.acquireFails;
  if (acquired) joystick.owner = Joystick::Owner::kCaller;
  return ReportResult("acquire " + std::to_string(device), acquired);
}

void RelinquishVJD(UINT device) {
  ReportCall("relinquish " + std::to_string(device));
  if (IsOurs(device)) TheJoystick().owner = Joystick::Owner::kNobody;
}

BOOL ResetVJD(UINT device) {
  if (IsOurs(device)) TheJoystick().pressed = 0;
  return ReportResult("reset " + std::to_string(device), IsOurs(device));
}

BOOL SetBtn(BOOL down, UINT device, UCHAR button) {
  const bool known = IsOurs(device) && button >= 1 && button <= Joystick::kButtons;
  ReportCall("button " + std::to_string(button) + (down ? " down" : " up") + (known ? "" : " refused"));
  if (!known) return FALSE;
  uint32_t& pressed = TheJoystick().pressed;
  const uint32_t bit = 1U << (button - 1);
  pressed = down ? pressed | bit : pressed & ~bit;
  return TRUE;
}
