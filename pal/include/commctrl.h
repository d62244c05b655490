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

// ---- trackbars ----------------------------------------------------------------------------------------------

#define TRACKBAR_CLASSW TEXT("msctls_trackbar32")
#define TBS_HORZ 0x0000
#define TBS_AUTOTICKS 0x0001
#define TBS_VERT 0x0002
#define TBS_BOTH 0x0008
#define TBS_NOTICKS 0x0010
#define TBM_GETPOS (WM_USER)
#define TBM_GETRANGEMIN (WM_USER + 1)
#define TBM_GETRANGEMAX (WM_USER + 2)
#define TBM_SETTIC (WM_USER + 4)
#define TBM_SETPOS (WM_USER + 5)
#define TBM_SETRANGE (WM_USER + 6)
#define TBM_SETPAGESIZE (WM_USER + 21)
#define TBM_SETLINESIZE (WM_USER + 23)
#define TB_LINEUP 0
#define TB_LINEDOWN 1
#define TB_PAGEUP 2
#define TB_PAGEDOWN 3
#define TB_THUMBPOSITION 4
#define TB_THUMBTRACK 5
#define TB_TOP 6
#define TB_BOTTOM 7
#define TB_ENDTRACK 8

// ---- progress bars ------------------------------------------------------------------------------------------

#define PROGRESS_CLASSW TEXT("msctls_progress32")
#define PBM_SETRANGE (WM_USER + 1)
#define PBM_SETPOS (WM_USER + 2)
#define PBM_SETSTEP (WM_USER + 4)
#define PBM_STEPIT (WM_USER + 5)
#define PBM_GETPOS (WM_USER + 8)
