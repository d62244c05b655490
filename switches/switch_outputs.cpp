#include "switches/switch_outputs.h"

#include <utility>

#include "app/app_state.h"
#include "switches/injected_input.h"
#include "switches/joystick.h"
#include "switches/maker_applications.h"

namespace veltra {
namespace {

int32_t SettingOf(SwitchIndex index) {
  const AppState& state = GetAppState();
  return index == kSwitch1 ? state.Sw1CmdVal : state.Sw2CmdVal;
}

// To the communication application when it runs, else to everyone.
void NotifySwitch(SwitchIndex index, bool pressed) {
  const AppState& state = GetAppState();
  if (state.SwitchInputMessage == 0) return;
  const HWND application = FindWindowW(kTalkBuilder4Class, nullptr);
  const bool swapped = application && state.TB4RevSw;
  const WPARAM source = (index == kSwitch1) != swapped ? 1 : 2;
  SendNotifyMessageW(application ? application : HWND_BROADCAST, state.SwitchInputMessage, source,
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
  const AppState& state = GetAppState();
  return state.picPort && !state.Suspended;
}

}  // namespace

void PressSwitch(SwitchIndex index) {
  HeldOutput& held = GetAppState().heldOutputs[index];
  const int32_t value = SettingOf(index);
  if (held.value && *held.value != value) ReleaseHeldSwitch(index);
  held = {};
  if (value == kSwitchNormal) return NotifySwitch(index, true);
  held.value = value;
  Output(value, true);
  if (!CanReleaseCome()) ReleaseHeldSwitch(index);
}

void ReleaseSwitch(SwitchIndex index) {
  const HeldOutput held = std::exchange(GetAppState().heldOutputs[index], {});
  const int32_t value = SettingOf(index);
  if (held.value) Output(*held.value, false);
  if (value == kSwitchNormal) return NotifySwitch(index, false);
  if (!held.value && !held.releasedEarly) Output(value, false);
}

void ReleaseHeldSwitch(SwitchIndex index) {
  HeldOutput& held = GetAppState().heldOutputs[index];
  if (!held.value) return;
  Output(*held.value, false);
  held = {.value = std::nullopt, .releasedEarly = true};
}

void ReleaseHeldSwitches() {
  ReleaseHeldSwitch(kSwitch1);
  ReleaseHeldSwitch(kSwitch2);
}

void ForgetHeldSwitches() {
  ReleaseHeldSwitches();
  GetAppState().switchIndicator.pressedMask = 0;
}

}  // namespace veltra
