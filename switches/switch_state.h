// The switches and the side buttons: records.
#pragma once

#include <windows.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "base/record.h"
#include "switches/button_action.h"
#include "switches/joystick.h"
#include "switches/macro_plugin.h"
#include "switches/mouse_filter.h"
#include "switches/press_filter.h"

namespace veltra {

enum SwitchIndex : size_t { kSwitch1 = 0, kSwitch2 = 1 };

// Values of Sw1CmdVal and Sw2CmdVal. From 50000 to 50007: joystick buttons 1 to 8. Any other: a virtual-key
// code.
constexpr int32_t kSwitchNormal = 0;
constexpr int32_t kSwitchLeftClick = -1;
constexpr int32_t kSwitchRightClick = -2;
constexpr int32_t kSwitchFirstJoystickButton = 50000;
constexpr int32_t kSwitchLastJoystickButton = 50007;

// What a press of a switch did and its release takes back.
struct HeldOutput {
  std::optional<int32_t> value;        // the switch value that is pressed now
  const WCHAR* application = nullptr;  // or the class of the application that was given the press
  WCHAR releaseLetter = 0;             // and the letter by which it hears of the release
  bool releasedEarly =
      false;  // it was released before the switch was; the break to come has nothing left to release
};
using HeldOutputs = std::array<HeldOutput, 2>;

// Which switches are held, for the options dialog.
struct SwitchIndicator {
  int pressedMask = 0;          // bit 0 switch 1, bit 1 switch 2
  HWND dialogWindow = nullptr;  // the open options dialog
  int serviceCount = 0;         // double clicks of the service gesture so far, at most 2
};

struct SwitchesState {
  // Settings.
  int32_t Sw1Start = 0;  // ms until switch 1 starts the tablet, 0 never
  bool SwClicks = false;
  int32_t Sw1CmdVal = kSwitchNormal;
  int32_t Sw2CmdVal = kSwitchNormal;
  bool AllowEscape = true;
  bool TB4RevSw = false;
  bool LexoraRevSw = false;
  int32_t SwAcceptMs = 0;  // of both switches, see PressRules
  int32_t SwRepeatGuardMs = 0;

  UINT SwitchInputMessage = RegisterWindowMessageW(TEXT("Veltra_SwitchInput"));  // 0 when that failed
  std::array<PressFilter, 2> pressFilters;
  HeldOutputs heldOutputs;
  std::array<std::optional<int32_t>, 2> lostReleases;  // of what, as far as Windows may have kept them
  SwitchIndicator switchIndicator;
  // Since when the middle, top or bottom side button is down and its long press pending, ms by the clock of
  // messages.
  std::optional<DWORD> escHeld;
  std::optional<DWORD> fn1Held;
  std::optional<DWORD> fn2Held;

  ButtonActions buttonActions;                 // what a press of each side button does
  std::shared_ptr<const MacroLibrary> macros;  // null without a plug-in; who is at work in it holds it too
  UINT VJoyDeviceId = 1;
  bool VJoyAcquired = false;
  JoystickLibrary joystick;
  MouseFilterLibrary mouseFilter;
};

inline SwitchesState& Switches() {
  return RecordOf<SwitchesState>();
}

}  // namespace veltra
