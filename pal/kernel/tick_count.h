// The machine's time as Windows counts it.
#pragma once

#include <windows.h>

#include <optional>

#include "pal/machine/effects.h"

namespace pal {

// How long Windows has been running when the machine is made.
inline constexpr Time kUptimeAtStart = std::chrono::minutes(2);

inline DWORD TickCount(Time now) {
  return static_cast<DWORD>((now + kUptimeAtStart) / std::chrono::milliseconds(1));
}

// The time that a wait of so many milliseconds ends; empty for INFINITE.
inline std::optional<Time> Deadline(Time now, DWORD milliseconds) {
  if (milliseconds == INFINITE) return std::nullopt;
  return now + std::chrono::milliseconds(milliseconds);
}

}  // namespace pal
