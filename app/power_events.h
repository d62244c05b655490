// Standby and resume.
#pragma once

#include <windows.h>

namespace veltra {

// One event of WM_POWERBROADCAST; events other than suspend and automatic resume do nothing.
void OnPowerEvent(WPARAM event);

// The controller tells of a press. When the suspend was announced so long before that the tablet has been
// asleep meanwhile, it is awake, whether or not Windows has said so: the suspended state ends, and the resume
// sequence follows the press.
void OnPressWhileSuspended();

// The resume timer fired.
void OnResumeTimer();

}  // namespace veltra
