// The machine's time, and what happens in it.
#pragma once

#include <windows.h>

#include <functional>

#include "pal/machine/effects.h"

namespace pal {

struct State;

enum class Clock { kVirtual, kWall };

class MachineClock {
 public:
  explicit MachineClock(State& state) : state_(state) {}

  [[nodiscard]] Time Now() const;  // since the machine was created
  void At(Time when, std::function<void()> event);
  void After(Time delay, std::function<void()> event) { At(Now() + delay, std::move(event)); }
  // Lets everything happen that is due within `span`, then returns. With wall time: sleeps that long.
  void Advance(Time span);
  // Advances until the condition holds (checked after every event and whenever the program waits) or the
  // limit is over; returns whether it holds.
  bool AdvanceUntil(const std::function<bool()>& condition, Time limit);

  SYSTEMTIME localTimeAtStart = {2024, 11, 2, 19, 14, 5, 0, 0};  // when Now() was 0; a Tuesday

 private:
  State& state_;
};

}  // namespace pal
