// The machine's time as Windows counts it.
#pragma once

#include <windows.h>

#include <optional>

#include "pal/effects.h"

namespace pal {

// How long Windows has been running when the machine is made.
inline constexpr Time kUptimeAtStart = std::chrono::minutes(2);
// Of QueryPerformanceCounter.
inline constexpr int64_t kPerformanceTicksPerMicrosecond = 10;

inline uint64_t TickCount64(Time now) {
  return static_cast<uint64_t>(
      std::chrono::duration_cast<std::chrono::milliseconds>(now + kUptimeAtStart).count());
}
inline DWORD TickCount(Time now) {
  return static_cast<DWORD>(TickCount64(now));
}

// The time that a wait of so many milliseconds ends; empty for INFINITE.
inline std::optional<Time> Deadline(Time now, DWORD milliseconds) {
  if (milliseconds == INFINITE) return std::nullopt;
  return now + std::chrono::milliseconds(milliseconds);
}

}  // namespace pal
