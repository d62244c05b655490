#include "switches/switch_events.h"

#include <utility>

#include "switches/actions.h"
#include "switches/button_action.h"
#include "switches/mouse_filter.h"
#include "switches/switch_indicator.h"
#include "switches/switch_outputs.h"
#include "switches/switch_state.h"
#include "system/injected_input.h"
#include "system/maker_applications.h"
#include "system/system_state.h"

namespace veltra {
namespace {

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
  WCHAR pressed;
  WCHAR released;
  WPARAM source;  // in the registered message
  UINT_PTR timer;
  bool SwitchesState::*held;
  bool needsAllowEscape;
  void (*shortPress)();
  void (*longPress)();
};

constexpr SideButton kSideButtons[] = {
    {'E', 'e', 3, kMiddleButtonTimer, &SwitchesState::escHeld, true, MiddleShortPress, MiddleLongPress},
    {'Y', 'y', 4, kTopButtonTimer, &SwitchesState::fn1Held, false, ShortAction<kTopShort>,
     LongAction<kTopLong>},
    {'Z', 'z', 5, kBottomButtonTimer, &SwitchesState::fn2Held, false, ShortAction<kBottomShort>,
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

struct SwitchLetter {
  WCHAR letter;
  WCHAR swapped;  // the same event of the other switch
  SwitchIndex index;
  bool pressed;
};

constexpr SwitchLetter kSwitchLetters[] = {
    {'D', 'J', kSwitch1, true},
    {'d', 'j', kSwitch1, false},
    {'J', 'D', kSwitch2, true},
    {'j', 'd', kSwitch2, false},
};

void NoteHeld(const SwitchLetter& event) {
  int& mask = Switches().switchIndicator.pressedMask;
  const int bit = 1 << event.index;
  mask = event.pressed ? mask | bit : mask & ~bit;
}

// Whether somebody else takes the event: the maker's communication or keyboard application, or the options
// dialog.
bool HandToOthers(const SwitchLetter& event) {
  if (const HWND talkBuilder = FindWindowW(kTalkBuilderClass, nullptr)) {
    SendMessageW(talkBuilder, kSwitchLetterMessage, 0, event.letter);
    return true;
  }
  if (const HWND lexora = FindWindowW(kLexoraClass, nullptr)) {
    SendMessageW(lexora, kSwitchLetterMessage, 0, Switches().LexoraRevSw ? event.swapped : event.letter);
    return true;
  }
  const HWND options = Switches().switchIndicator.dialogWindow;
  if (!options) return false;
  RepaintSwitchIndicator(options);
  return true;
}

void OnSwitch(const SwitchLetter& event) {
  NoteHeld(event);
  if (HandToOthers(event)) {
    // What an earlier press holds down would stay so: this release goes elsewhere.
    if (!event.pressed) ReleaseHeldSwitch(event.index);
    return;
  }
  if (event.pressed)
    PressSwitch(event.index);
  else
    ReleaseSwitch(event.index);
}

}  // namespace

void HandleSwitchEvent(WCHAR letter) {
  SetThreadExecutionState(ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED);  // switches the display on
  for (const SideButton& button : kSideButtons)
    if (letter == button.pressed || letter == button.released)
      return OnSideButton(button, letter == button.pressed);
  for (const SwitchLetter& event : kSwitchLetters)
    if (letter == event.letter) return OnSwitch(event);
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
