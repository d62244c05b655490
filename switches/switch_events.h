// The events of the two external switches and the three side buttons.
#pragma once

#include <windows.h>

#include <string_view>

namespace veltra {

enum class SwitchButton { kSwitch1, kSwitch2, kMiddle, kTop, kBottom };

struct SwitchEvent {
  std::string_view text;  // as the controller says it
  WCHAR letter;           // as the maker's applications take it
  SwitchButton button;
  bool pressed;
};

constexpr SwitchEvent kSwitchEvents[] = {
    {"EscMake", 'E', SwitchButton::kMiddle, true},  {"EscBreak", 'e', SwitchButton::kMiddle, false},
    {"Sw1Make", 'D', SwitchButton::kSwitch1, true}, {"Sw1Break", 'd', SwitchButton::kSwitch1, false},
    {"Sw2Make", 'J', SwitchButton::kSwitch2, true}, {"Sw2Break", 'j', SwitchButton::kSwitch2, false},
    {"Fn1Make", 'Y', SwitchButton::kTop, true},     {"Fn1Break", 'y', SwitchButton::kTop, false},
    {"Fn2Make", 'Z', SwitchButton::kBottom, true},  {"Fn2Break", 'z', SwitchButton::kBottom, false},
};

// The event of the message that the main thread is handling: its time decides how long something was held.
void HandleSwitchEvent(const SwitchEvent& event);

constexpr bool IsSideButton(SwitchButton button) {
  return button >= SwitchButton::kMiddle;
}

// No release can come any more, or none may act: the switches' presses are taken back, no switch counts as
// held any more, and neither the time nor the release of a side button does anything.
void ForgetHeldSwitches();

// The long-press timer of a side button fired; `timer` is its id.
void OnLongPressTimer(UINT_PTR timer);
// The timer of a switch whose press counts only after a while.
void OnAcceptTimer(UINT_PTR timer);

}  // namespace veltra
