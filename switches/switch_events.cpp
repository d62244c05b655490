#include "switches/switch_events.h"

#include <algorithm>
#include <utility>

#include "switches/actions.h"
#include "switches/button_action.h"
#include "switches/mouse_filter.h"
#include "switches/switch_indicator.h"
#include "switches/switch_outputs.h"
#include "switches/switch_state.h"
#include "system/injected_input.h"
#include "system/maker_applications.h"
#include "system/numbers.h"
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
  bool SwitchesState::*held;
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

void OnSideButton(const SideButton& button, bool pressed) {
  if (button.needsAllowEscape && !Switches().AllowEscape) return;
  if (Switches().SwitchInputMessage != 0)
    SendNotifyMessageW(HWND_BROADCAST, Switches().SwitchInputMessage, button.source, pressed ? 1 : 0);
  if (pressed) {
    SetTimer(MainWindow(), button.timer, kLongPressMs, nullptr);
    Switches().*button.held = true;
    return;
  }
  KillTimer(MainWindow(), button.timer);
  const bool wasHeld = std::exchange(Switches().*button.held, false);
  if (wasHeld) button.shortPress();
}

// ---- switches ---------------------------------------------------------------------------------------------

SwitchIndex IndexOf(SwitchButton button) {
  return button == SwitchButton::kSwitch1 ? kSwitch1 : kSwitch2;
}

// Of the same event of the other switch.
WCHAR SwappedLetter(const SwitchEvent& event) {
  const SwitchButton other =
      event.button == SwitchButton::kSwitch1 ? SwitchButton::kSwitch2 : SwitchButton::kSwitch1;
  return std::ranges::find_if(kSwitchEvents,
                              [&](const SwitchEvent& candidate) {
                                return candidate.button == other && candidate.pressed == event.pressed;
                              })
      ->letter;
}

void NoteHeld(const SwitchEvent& event) {
  int& mask = Switches().switchIndicator.pressedMask;
  const int bit = 1 << IndexOf(event.button);
  mask = event.pressed ? mask | bit : mask & ~bit;
}

// Whether somebody else takes the event: the maker's communication or keyboard application, or the options
// dialog.
bool HandToOthers(const SwitchEvent& event) {
  if (const HWND talkBuilder = FindWindowW(kTalkBuilderClass, nullptr)) {
    SendMessageW(talkBuilder, kSwitchLetterMessage, 0, event.letter);
    return true;
  }
  if (const HWND lexora = FindWindowW(kLexoraClass, nullptr)) {
    SendMessageW(lexora, kSwitchLetterMessage, 0,
                 Switches().LexoraRevSw ? SwappedLetter(event) : event.letter);
    return true;
  }
  const HWND options = Switches().switchIndicator.dialogWindow;
  if (!options) return false;
  RepaintSwitchIndicator(options);
  return true;
}

void OnSwitch(const SwitchEvent& event) {
  const SwitchIndex index = IndexOf(event.button);
  NoteHeld(event);
  if (HandToOthers(event)) {
    // What an earlier press holds down would stay so: this release goes elsewhere.
    if (!event.pressed) ReleaseHeldSwitch(index);
    return;
  }
  if (event.pressed)
    PressSwitch(index);
  else
    ReleaseSwitch(index);
}

}  // namespace

void HandleSwitchEvent(const SwitchEvent& event) {
  SetThreadExecutionState(ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED);  // switches the display on
  for (const SideButton& button : kSideButtons)
    if (button.button == event.button) return OnSideButton(button, event.pressed);
  OnSwitch(event);
}

void ForgetHeldSwitches() {
  ReleaseHeldSwitches();
  Switches().switchIndicator.pressedMask = 0;
  for (const SideButton& button : kSideButtons)
    if (std::exchange(Switches().*button.held, false)) KillTimer(MainWindow(), button.timer);
}

void OnLongPressTimer(UINT_PTR timer) {
  for (const SideButton& button : kSideButtons) {
    if (timer != button.timer) continue;
    KillTimer(MainWindow(), button.timer);
    Switches().*button.held = false;
    button.longPress();
  }
}

}  // namespace veltra
