// What Windows keeps from a window that does not ask for it. The calls are looked up by name: where one is
// missing, that Windows needs no asking or has nothing to tell. A refusal is an error line, no more.
#pragma once

#include <windows.h>

#include <span>

namespace veltra {

// When the tool runs with higher rights than other programs, these messages of theirs reach the window all
// the same. Windows 7 and later.
void AdmitFromLowerRights(HWND window, std::span<const UINT> messages);

// WM_POWERBROADCAST on tablets with modern standby, which announce suspend and resume to nobody else; others
// announce them twice then. Windows 8 and later.
void AskForSuspendAndResume(HWND window);

// WM_WTSSESSION_CHANGE when the screen is locked and unlocked.
void AskForLockAndUnlock(HWND window);

}  // namespace veltra
