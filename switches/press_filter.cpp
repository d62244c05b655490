#include "switches/press_filter.h"

#include <utility>

namespace veltra {
namespace {

bool IsOver(uint32_t since, uint32_t now, int32_t milliseconds) {
  return now - since >= static_cast<uint32_t>(milliseconds);
}

}  // namespace

// When the release of the press before was lost this one counts as it is: nothing must stay pressed.
PressFilter::Outcome PressFilter::OnPress(uint32_t now, const PressRules& rules) {
  if (state_ == State::kDown) return Outcome::kCounts;
  const bool isGuarded = releasedAt_ && !IsOver(*releasedAt_, now, rules.guardMs);
  state_ = isGuarded ? State::kIgnored : rules.acceptMs > 0 ? State::kAwaited : State::kDown;
  pressedAt_ = now;
  if (isGuarded) return Outcome::kNothing;
  return state_ == State::kAwaited ? Outcome::kAwait : Outcome::kCounts;
}

PressFilter::Outcome PressFilter::OnRelease(uint32_t now, const PressRules& rules) {
  const State before = std::exchange(state_, State::kUp);
  if (before == State::kIgnored) return Outcome::kNothing;
  if (before == State::kAwaited && !IsOver(pressedAt_, now, rules.acceptMs)) return Outcome::kNothing;
  releasedAt_ = now;
  return before == State::kAwaited ? Outcome::kPressedAndLeft : Outcome::kCounts;
}

bool PressFilter::OnAccepted() {
  if (state_ != State::kAwaited) return false;
  state_ = State::kDown;
  return true;
}

void PressFilter::Forget() {
  if (state_ == State::kAwaited) state_ = State::kIgnored;
  if (state_ == State::kDown) state_ = State::kUp;
}

}  // namespace veltra
