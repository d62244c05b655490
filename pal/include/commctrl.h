// Common controls.
#pragma once

#include <windows.h>

#define ICC_BAR_CLASSES 0x00000004u
#define ICC_PROGRESS_CLASS 0x00000020u
#define ICC_STANDARD_CLASSES 0x00004000u

struct INITCOMMONCONTROLSEX {
  DWORD dwSize;
  DWORD dwICC;
};

void WINAPI InitCommonControls();
BOOL WINAPI InitCommonControlsEx(const INITCOMMONCONTROLSEX* controls);
