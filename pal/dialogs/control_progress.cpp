// Progress bars.
#include <commctrl.h>

#include <algorithm>
#include <utility>

#include "pal/windows/desktop.h"

namespace pal {
namespace {

// A step beyond the end begins again.
int Step(ProgressState& state) {
  const int before = state.position;
  const int target = before + state.step;
  const int span = state.highest - state.lowest;
  state.position = target > state.highest && span > 0 ? state.lowest + (target - state.lowest) % span
                                                      : std::clamp(target, state.lowest, state.highest);
  return before;
}

LRESULT SetRange(ProgressState& state, int lowest, int highest) {
  const LONG before = MAKELONG(state.lowest, state.highest);
  if (lowest <= highest) {
    state.lowest = lowest;
    state.highest = highest;
    state.position = std::clamp(state.position, lowest, highest);
  }
  return before;
}

}  // namespace

Reactions ReactProgress(Window& progress, UINT message, WPARAM wParam, LPARAM lParam) {
  auto& state = std::get<ProgressState>(progress.control);
  const int number = static_cast<int>(wParam);
  if (message == PBM_SETRANGE) return Reaction{SetRange(state, LOWORD(lParam), HIWORD(lParam))};
  if (message == PBM_SETSTEP) return Reaction{std::exchange(state.step, number)};
  if (message == PBM_STEPIT) return Reaction{Step(state)};
  return std::nullopt;
}

}  // namespace pal
