// The events of the two external switches and the three side buttons.
#pragma once

#include <windows.h>

namespace veltra {

// Switch 1 D d, switch 2 J j, middle button E e, top button Y y, bottom button Z z; the capital is the press.
// Any other letter is ignored.
void HandleSwitchEvent(WCHAR letter);

// The long-press timer of a side button fired; `timer` is its id: 5 middle, 7 top, 8 bottom.
void OnLongPressTimer(UINT_PTR timer);

constexpr UINT_PTR kMiddleButtonTimer = 5;
constexpr UINT_PTR kTopButtonTimer = 7;
constexpr UINT_PTR kBottomButtonTimer = 8;
constexpr UINT kLongPressMs = 1500;

}  // namespace veltra
