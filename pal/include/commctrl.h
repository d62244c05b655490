// Common controls.
#pragma once

#include <windows.h>

void WINAPI InitCommonControls();

// ---- trackbars ----------------------------------------------------------------------------------------------

#define TRACKBAR_CLASSW TEXT("msctls_trackbar32")
#define TBS_HORZ 0x0000
#define TBS_BOTH 0x0008
#define TBS_NOTICKS 0x0010
#define TBM_GETPOS (WM_USER)
#define TBM_SETTIC (WM_USER + 4)
#define TBM_SETPOS (WM_USER + 5)
#define TBM_SETRANGE (WM_USER + 6)
#define TB_LINEUP 0
#define TB_LINEDOWN 1
#define TB_THUMBPOSITION 4
#define TB_THUMBTRACK 5
#define TB_ENDTRACK 8

// ---- progress bars ------------------------------------------------------------------------------------------

#define PROGRESS_CLASSW TEXT("msctls_progress32")
#define PBM_SETRANGE (WM_USER + 1)
#define PBM_SETSTEP (WM_USER + 4)
#define PBM_STEPIT (WM_USER + 5)
