#include "pal/kernel/clock.h"

#include "pal/machine/state.h"

namespace pal {

Time MachineClock::Now() const {
  return state_.scheduler.Now();
}

void MachineClock::At(Time when, std::function<void()> event) {
  const MachineLock lock(state_.mutex);
  state_.scheduler.At(when, std::move(event));
}

void MachineClock::Advance(Time span) {
  AdvanceUntil(nullptr, span);
}

bool MachineClock::AdvanceUntil(const std::function<bool()>& condition, Time limit) {
  const MachineLock lock(state_.mutex);
  return state_.scheduler.Run(state_.scheduler.Now() + limit, condition);
}

}  // namespace pal
