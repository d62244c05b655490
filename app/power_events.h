// Standby and resume.
#pragma once

#include <windows.h>

namespace veltra {

// One event of WM_POWERBROADCAST; events other than suspend and automatic resume do nothing.
void OnPowerEvent(WPARAM event);

// The resume timer fired.
void OnResumeTimer();

}  // namespace veltra
