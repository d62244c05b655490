#include "switches/switch_outputs.h"

#include <utility>

#include "switches/joystick.h"
#include "switches/switch_state.h"
#include "system/injected_input.h"
#include "system/maker_applications.h"
#include "system/numbers.h"

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

void InjectMouse(DWORD flags, bool pressed) {
  if (pressed) NoteObstacle(nullptr);
  mouse_event(flags, 0, 0, 0, 0);
}

bool IsJoystickButton(int32_t value) {
  return value >= kSwitchFirstJoystickButton && value <= kSwitchLastJoystickButton;
}

bool GoesThroughInput(int32_t value) {
  return value != kSwitchNormal && !IsJoystickButton(value);
}

bool IsHeldInput(SwitchIndex index) {
  const std::optional<int32_t> value = Switches().heldOutputs[index].value;
  return value && GoesThroughInput(*value);
}

UCHAR JoystickButton(int32_t value) {
  return static_cast<UCHAR>(value - kSwitchFirstJoystickButton + 1);
}

void Output(SwitchIndex index, int32_t value, bool pressed) {
  if (!pressed && GoesThroughInput(value) && IsScreenTaken()) Switches().lostReleases[index] = value;
  if (value == kSwitchNormal) return NotifySwitch(index, pressed);
  if (value == kSwitchLeftClick)
    return InjectMouse(pressed ? MOUSEEVENTF_LEFTDOWN : MOUSEEVENTF_LEFTUP, pressed);
  if (value == kSwitchRightClick)
    return InjectMouse(pressed ? MOUSEEVENTF_RIGHTDOWN : MOUSEEVENTF_RIGHTUP, pressed);
  if (IsJoystickButton(value)) return SetJoystickButton(pressed, JoystickButton(value));
  InjectKey(value, pressed);
}

// Nobody waits for the application: it may hang, and the tablet may be about to sleep.
void TellOfRelease(const HeldOutput& held) {
  if (const HWND application = FindWindowW(held.application, nullptr))
    SendNotifyMessageW(application, kSwitchLetterMessage, 0, held.releaseLetter);
}

}  // namespace

void PressSwitch(SwitchIndex index) {
  HeldOutput& held = Switches().heldOutputs[index];
  const int32_t value = SettingOf(index);
  if (held.value && *held.value != value) ReleaseHeldSwitch(index);
  held = {};
  held.value = value;
  Output(index, value, true);
}

void ReleaseSwitch(SwitchIndex index) {
  const HeldOutput held = std::exchange(Switches().heldOutputs[index], {});
  Output(index, held.value.value_or(SettingOf(index)), false);
}

void NoteLockedScreen() {
  for (const SwitchIndex index : {kSwitch1, kSwitch2})
    if (IsHeldInput(index)) Switches().lostReleases[index] = Switches().heldOutputs[index].value;
}

void RepeatLostReleases() {
  const auto lost = std::exchange(Switches().lostReleases, {});
  for (const SwitchIndex index : {kSwitch1, kSwitch2})
    if (lost[index] && lost[index] != Switches().heldOutputs[index].value) Output(index, *lost[index], false);
}

void ReleaseHeldSwitch(SwitchIndex index) {
  HeldOutput& held = Switches().heldOutputs[index];
  if (!held.value && !held.application) return;
  const HeldOutput before = std::exchange(held, {});
  held.releasedEarly = true;
  if (before.application) return TellOfRelease(before);
  Output(index, *before.value, false);
}

void ReleaseAfterLock() {
  RepeatLostReleases();
  for (const SwitchIndex index : {kSwitch1, kSwitch2})
    if (IsHeldInput(index)) ReleaseHeldSwitch(index);
}

void ReleaseHeldOutputs() {
  for (const SwitchIndex index : {kSwitch1, kSwitch2})
    if (Switches().heldOutputs[index].value) ReleaseHeldSwitch(index);
}

}  // namespace veltra
