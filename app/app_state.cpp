#include "app/app_state.h"

#include "base/called_by_windows.h"
#include "switches/switch_events.h"

namespace veltra {
namespace {

template <class... Records>
void PutInUse(Records*... records) {
  ((recordInUse<Records> = records), ...);
}

}  // namespace

AppState::AppState() {
  link.whenLineIsGone = ForgetHeldSwitches;
  power.isUpdateRunning = [] { return Firmware().bootloader.IsRunning(); };
}

AppState& GetAppState() {
  if (!HasAppState()) {
    const auto state = std::make_shared<AppState>();
    PutInUse(state.get(), &state->system, &state->switches, &state->link, &state->power, &state->board,
             &state->firmware);
    stateInUse = state;
  }
  return App();
}

bool HasAppState() {
  return stateInUse != nullptr;
}

void DestroyAppState() {
  PutInUse<AppState, SystemState, SwitchesState, LinkState, PowerState, BoardState, FirmwareState>(
      nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  stateInUse.reset();
}

}  // namespace veltra
