// The one object that owns everything that lives longer than a call, composed of the rooms' records. The main
// thread alone touches it.
#pragma once

#include <cstdint>

#include "board/board_state.h"
#include "firmware/firmware_state.h"
#include "link/link_state.h"
#include "power/power_state.h"
#include "switches/switch_state.h"
#include "system/system_state.h"

namespace veltra {

struct AppState {
  AppState();
  AppState(const AppState&) = delete;
  AppState& operator=(const AppState&) = delete;

  SystemState system;
  SwitchesState switches;
  LinkState link;
  PowerState power;
  BoardState board;
  FirmwareState firmware;

  int32_t StartupDelay = 3000;  // ms before the start-up sequence
  int32_t WakeupDelay = 1000;   // ms between the resume notification and the resume sequence
  bool PowerMeterOpen = false;  // while the dialog is open, so that no second one opens
  bool OptionsOpen = false;
};

// The state, created at the first call.
AppState& GetAppState();
[[nodiscard]] bool HasAppState();

// For who is at work with it, as the rooms' accessors: never a new one.
inline AppState& App() {
  return RecordOf<AppState>();
}

// Ends the state. Nobody reaches it any more; its memory goes when the handlers up the stack have come back.
void DestroyAppState();

}  // namespace veltra
