#include "app/app_state.h"

#include "switches/switch_outputs.h"

namespace veltra {
namespace {

std::weak_ptr<AppState> last;  // the one in use, or one that ended and is still held

template <class... Records>
void PutInUse(Records*... records) {
  ((recordInUse<Records> = records), ...);
}

}  // namespace

AppState::AppState() {
  link.whenLineIsGone = ForgetHeldSwitches;
  PutInUse(&system, &switches, &link, &power, &board, &firmware);
}

AppState::~AppState() {
  PutInUse<SystemState, SwitchesState, LinkState, PowerState, BoardState, FirmwareState>(
      nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
}

AppState& GetAppState() {
  if (const std::shared_ptr<AppState> held = last.lock()) return *held;
  const std::shared_ptr<AppState> state = std::make_shared<AppState>();
  stateInUse = state;
  last = state;
  return *state;
}

bool HasAppState() {
  return stateInUse != nullptr;
}

void DestroyAppState() {
  stateInUse.reset();
}

std::shared_ptr<AppState> KeepAppState() {
  return std::static_pointer_cast<AppState>(stateInUse);
}

}  // namespace veltra
