#include "switches/switch_outputs.h"

#include <utility>

#include "link/pic_comm.h"
#include "switches/joystick.h"
#include "switches/switch_state.h"
#include "system/injected_input.h"
#include "system/maker_applications.h"
#include "system/system_state.h"

namespace veltra {
namespace {

int32_t SettingOf(SwitchIndex index) {
  return index == kSwitch1 ? Switches().Sw1CmdVal : Switches().Sw2CmdVal;
}

// To the communication application when it runs, else to everyone.
void NotifySwitch(SwitchIndex index, bool pressed) {
  if (Switches().SwitchInputMessage == 0) return;
  const HWND application = FindWindowW(kTalkBuilder4Class, nullptr);
  const bool swapped = application && Switches().TB4RevSw;
  const WPARAM source = (index == kSwitch1) != swapped ? 1 : 2;
  SendNotifyMessageW(application ? application : HWND_BROADCAST, Switches().SwitchInputMessage, source,
                     pressed ? 1 : 0);
}

void InjectMouse(DWORD flags) {
  mouse_event(flags, 0, 0, 0, 0);
}

bool IsJoystickButton(int32_t value) {
  return value >= kSwitchFirstJoystickButton && value <= kSwitchLastJoystickButton;
}

UCHAR JoystickButton(int32_t value) {
  return static_cast<UCHAR>(value - kSwitchFirstJoystickButton + 1);
}

void Output(int32_t value, bool pressed) {
  if (value == kSwitchLeftClick) return InjectMouse(pressed ? MOUSEEVENTF_LEFTDOWN : MOUSEEVENTF_LEFTUP);
  if (value == kSwitchRightClick) return InjectMouse(pressed ? MOUSEEVENTF_RIGHTDOWN : MOUSEEVENTF_RIGHTUP);
  if (IsJoystickButton(value)) return SetJoystickButton(pressed, JoystickButton(value));
  InjectKey(value, pressed);
}

// A press may wait in the message queue when the port is closed or the tablet is about to sleep.
bool CanReleaseCome() {
  return IsPicPortOpen() && !IsSuspended();
}

}  // namespace

void PressSwitch(SwitchIndex index) {
  HeldOutput& held = Switches().heldOutputs[index];
  const int32_t value = SettingOf(index);
  if (held.value && *held.value != value) ReleaseHeldSwitch(index);
  held = {};
  if (value == kSwitchNormal) return NotifySwitch(index, true);
  held.value = value;
  Output(value, true);
  if (!CanReleaseCome()) ReleaseHeldSwitch(index);
}

void ReleaseSwitch(SwitchIndex index) {
  const HeldOutput held = std::exchange(Switches().heldOutputs[index], {});
  const int32_t value = SettingOf(index);
  if (held.value) Output(*held.value, false);
  if (value == kSwitchNormal) return NotifySwitch(index, false);
  if (!held.value && !held.releasedEarly) Output(value, false);
}

void ReleaseHeldSwitch(SwitchIndex index) {
  HeldOutput& held = Switches().heldOutputs[index];
  if (!held.value) return;
  Output(*held.value, false);
  held = {.value = std::nullopt, .releasedEarly = true};
}

void ReleaseHeldSwitches() {
  ReleaseHeldSwitch(kSwitch1);
  ReleaseHeldSwitch(kSwitch2);
}

}  // namespace veltra
