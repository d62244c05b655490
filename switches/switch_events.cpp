#include "switches/switch_events.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "link/pic_comm.h"
#include "switches/actions.h"
#include "switches/button_action.h"
#include "switches/mouse_filter.h"
#include "switches/switch_indicator.h"
#include "switches/switch_outputs.h"
#include "switches/switch_state.h"
#include "system/injected_input.h"
#include "system/maker_applications.h"
#include "system/numbers.h"
#include "system/send_while_alive.h"
#include "system/system_state.h"

namespace veltra {
namespace {

constexpr UINT kLongPressMs = 1500;

// ---- side buttons -----------------------------------------------------------------------------------------

void MiddleShortPress() {
  MouseFilter(1);
}

void MiddleLongPress() {
  MouseFilter(0);
  MessageBeep(MB_OK);
  InjectKey(VK_ESCAPE, true);
  InjectKey(VK_ESCAPE, false);
}

template <ButtonIndex index>
void ShortAction() {
  ExecuteButtonAction(index);
}

template <ButtonIndex index>
void LongAction() {
  MessageBeep(MB_OK);
  ExecuteButtonAction(index);
}

struct SideButton {
  SwitchButton button;
  WPARAM source;  // in the registered message
  UINT_PTR timer;
  std::optional<DWORD> SwitchesState::*held;
  bool needsAllowEscape;
  void (*shortPress)();
  void (*longPress)();
};

constexpr SideButton kSideButtons[] = {
    {SwitchButton::kMiddle, 3, kMiddleButtonTimer, &SwitchesState::escHeld, true, MiddleShortPress,
     MiddleLongPress},
    {SwitchButton::kTop, 4, kTopButtonTimer, &SwitchesState::fn1Held, false, ShortAction<kTopShort>,
     LongAction<kTopLong>},
    {SwitchButton::kBottom, 5, kBottomButtonTimer, &SwitchesState::fn2Held, false, ShortAction<kBottomShort>,
     LongAction<kBottomLong>},
};

// A press may wait in the message queue when the port is closed or the tablet is about to sleep.
bool CanReleaseCome() {
  return IsPicPortOpen() && !IsSuspended();
}

// When it was pressed, if that was still waiting for the release or the time of a long press.
std::optional<DWORD> Disarm(const SideButton& button) {
  KillTimer(MainWindow(), button.timer);
  return std::exchange(Switches().*button.held, std::nullopt);
}

// When the controller said what is being handled, ms. The main thread may have been busy since.
DWORD EventTime() {
  return static_cast<DWORD>(GetMessageTime());
}

void OnSideButton(const SideButton& button, bool pressed) {
  if (button.needsAllowEscape && !Switches().AllowEscape) return;
  if (Switches().SwitchInputMessage != 0)
    SendNotifyMessageW(HWND_BROADCAST, Switches().SwitchInputMessage, button.source, pressed ? 1 : 0);
  if (pressed) {
    if (!CanReleaseCome()) return;
    SetTimer(MainWindow(), button.timer, kLongPressMs, nullptr);
    Switches().*button.held = EventTime();
    return;
  }
  const std::optional<DWORD> since = Disarm(button);
  if (!since) return;
  const bool isLong = EventTime() - *since >= kLongPressMs;
  (isLong ? button.longPress : button.shortPress)();
}

// ---- switches ---------------------------------------------------------------------------------------------

SwitchIndex IndexOf(SwitchButton button) {
  return button == SwitchButton::kSwitch1 ? kSwitch1 : kSwitch2;
}

const SwitchEvent& EventOf(SwitchButton button, bool pressed) {
  return *std::ranges::find_if(kSwitchEvents, [&](const SwitchEvent& event) {
    return event.button == button && event.pressed == pressed;
  });
}

WCHAR LetterOf(SwitchButton button, bool pressed) {
  return EventOf(button, pressed).letter;
}

SwitchButton OtherSwitch(SwitchButton button) {
  return button == SwitchButton::kSwitch1 ? SwitchButton::kSwitch2 : SwitchButton::kSwitch1;
}

void NoteHeld(const SwitchEvent& event) {
  int& mask = Switches().switchIndicator.pressedMask;
  const int bit = 1 << IndexOf(event.button);
  mask = event.pressed ? mask | bit : mask & ~bit;
}

// The maker's communication or keyboard application takes a switch before all others; false when neither
// runs. What an earlier press did elsewhere is taken back first: this release is none of it.
bool GiveToApplication(const SwitchEvent& event) {
  const WCHAR* const windowClass = FindWindowW(kTalkBuilderClass, nullptr) ? kTalkBuilderClass : kLexoraClass;
  const HWND application = FindWindowW(windowClass, nullptr);
  if (!application) return false;
  const bool swapped = windowClass == kLexoraClass && Switches().LexoraRevSw;
  const SwitchButton button = swapped ? OtherSwitch(event.button) : event.button;
  const SwitchIndex index = IndexOf(event.button);
  HeldOutput& held = Switches().heldOutputs[index];
  if (held.application != windowClass) ReleaseHeldSwitch(index);
  held = {};
  if (event.pressed) {
    held.application = windowClass;
    held.releaseLetter = LetterOf(button, false);
  }
  SendWhileAlive(application, kSwitchLetterMessage, 0, LetterOf(button, event.pressed));
  return true;
}

// While the options are open they show the switches, which do nothing else.
bool ShowInOptions(const SwitchEvent& event) {
  if (!Switches().switchIndicator.dialogWindow) return false;
  if (!event.pressed) {
    ReleaseHeldSwitch(IndexOf(event.button));
    Switches().heldOutputs[IndexOf(event.button)] = {};
  }
  RepaintSwitchIndicator();
  return true;
}

// An event that counts.
void OnSwitch(const SwitchEvent& event) {
  const SwitchIndex index = IndexOf(event.button);
  NoteHeld(event);
  if (!event.pressed && std::exchange(Switches().heldOutputs[index].releasedEarly, false))
    return RepaintSwitchIndicator();
  const bool isTaken = GiveToApplication(event) || ShowInOptions(event);
  if (!isTaken && event.pressed) PressSwitch(index);
  if (!isTaken && !event.pressed) ReleaseSwitch(index);
  if (event.pressed && !CanReleaseCome()) ReleaseHeldSwitch(index);
}

UINT_PTR AcceptTimerOf(SwitchIndex index) {
  return kSwitch1AcceptTimer + index;
}

void FilterSwitch(const SwitchEvent& event) {
  using Outcome = PressFilter::Outcome;
  const SwitchIndex index = IndexOf(event.button);
  const PressRules rules = {Switches().SwAcceptMs, Switches().SwRepeatGuardMs};
  PressFilter& filter = Switches().pressFilters[index];
  const Outcome outcome =
      event.pressed ? filter.OnPress(EventTime(), rules) : filter.OnRelease(EventTime(), rules);
  if (outcome == Outcome::kAwait)
    SetTimer(MainWindow(), AcceptTimerOf(index), static_cast<UINT>(rules.acceptMs), nullptr);
  if (outcome == Outcome::kPressedAndLeft) OnSwitch(EventOf(event.button, true));
  if (outcome == Outcome::kPressedAndLeft || outcome == Outcome::kCounts) OnSwitch(event);
}

}  // namespace

void HandleSwitchEvent(const SwitchEvent& event) {
  SetThreadExecutionState(ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED);  // switches the display on
  RepeatLostReleases();
  for (const SideButton& button : kSideButtons)
    if (button.button == event.button) return OnSideButton(button, event.pressed);
  FilterSwitch(event);
}

void ForgetHeldSwitches() {
  RepeatLostReleases();
  for (const SideButton& button : kSideButtons) Disarm(button);
  for (const SwitchIndex index : {kSwitch1, kSwitch2}) {
    Switches().pressFilters[index].Forget();
    ReleaseHeldSwitch(index);
  }
  Switches().switchIndicator.pressedMask = 0;
  RepaintSwitchIndicator();
}

void OnLongPressTimer(UINT_PTR timer) {
  for (const SideButton& button : kSideButtons)
    if (timer == button.timer && Disarm(button)) button.longPress();
}

void OnAcceptTimer(UINT_PTR timer) {
  KillTimer(MainWindow(), timer);
  const bool isFirst = timer == kSwitch1AcceptTimer;
  if (Switches().pressFilters[isFirst ? kSwitch1 : kSwitch2].OnAccepted())
    OnSwitch(EventOf(isFirst ? SwitchButton::kSwitch1 : SwitchButton::kSwitch2, true));
}

}  // namespace veltra
