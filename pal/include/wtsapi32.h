// What happens to the session in which the program runs.
#pragma once

#include <windows.h>

#define NOTIFY_FOR_THIS_SESSION 0
// WM_WTSSESSION_CHANGE from now on.
BOOL WINAPI WTSRegisterSessionNotification(HWND window, DWORD flags);
