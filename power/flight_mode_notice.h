// A while after the start the user is reminded that all radios are off.
#pragma once

#include <windows.h>

namespace veltra {

constexpr UINT kFlightModeNoticeMs = 3000;

void StartFlightModeTimer();

// The timer fired: a balloon when flight mode is on.
void OnFlightModeTimer();

}  // namespace veltra
