// Dialogs, their controls, and what windows show. Part of winuser.h.
#pragma once

#include "windef.h"

// ---- what windows show --------------------------------------------------------------------------------------

#define WS_VSCROLL 0x00200000
#define WS_TABSTOP 0x00010000
#define SW_HIDE 0
#define SW_SHOW 5
#define SWP_NOSIZE 0x0001u
#define SWP_NOMOVE 0x0002u
#define SWP_NOZORDER 0x0004u
#define SWP_NOACTIVATE 0x0010u
#define HWND_TOPMOST (reinterpret_cast<HWND>(static_cast<LONG_PTR>(-1)))
#define HWND_TOP (static_cast<HWND>(nullptr))
#define WM_SETFOCUS 0x0007
#define WM_KILLFOCUS 0x0008
#define WM_ENABLE 0x000A
#define WM_PAINT 0x000F
#define WM_CHAR 0x0102

struct PAINTSTRUCT {
  HDC hdc;
  BOOL fErase;
  RECT rcPaint;
  BOOL fRestore;
  BOOL fIncUpdate;
  BYTE rgbReserved[32];
};
using LPPAINTSTRUCT = PAINTSTRUCT*;

BOOL WINAPI ShowWindow(HWND window, int command);
BOOL WINAPI EnableWindow(HWND window, BOOL enable);
BOOL WINAPI IsWindowVisible(HWND window);
BOOL WINAPI IsWindowEnabled(HWND window);
HWND WINAPI SetFocus(HWND window);
BOOL WINAPI SetWindowPos(HWND window, HWND insertAfter, int x, int y, int width, int height, UINT flags);
BOOL WINAPI SetWindowTextW(HWND window, LPCWSTR text);
BOOL WINAPI UpdateWindow(HWND window);
BOOL WINAPI ValidateRect(HWND window, const RECT* rect);
HDC WINAPI BeginPaint(HWND window, LPPAINTSTRUCT paint);
BOOL WINAPI EndPaint(HWND window, const PAINTSTRUCT* paint);
SHORT WINAPI GetAsyncKeyState(int virtualKey);

// ---- dialogs ------------------------------------------------------------------------------------------------

#define DS_MODALFRAME 0x0080
#define DS_CENTER 0x0800
#define DLGWINDOWEXTRA (3 * static_cast<int>(sizeof(LONG_PTR)) + 24)
#define DWLP_MSGRESULT 0
#define DWLP_DLGPROC (DWLP_MSGRESULT + static_cast<int>(sizeof(LRESULT)))
#define DWLP_USER (DWLP_DLGPROC + static_cast<int>(sizeof(DLGPROC)))

// Dialogs come as templates of the extended form, as resources hold them.
struct DLGTEMPLATE {
  DWORD style;
  DWORD dwExtendedStyle;
  WORD cdit;
  SHORT x;
  SHORT y;
  SHORT cx;
  SHORT cy;
};
using LPCDLGTEMPLATEW = const DLGTEMPLATE*;

INT_PTR WINAPI DialogBoxIndirectParamW(HINSTANCE instance, LPCDLGTEMPLATEW dialog, HWND owner,
                                       DLGPROC procedure, LPARAM parameter);
HWND WINAPI CreateDialogIndirectParamW(HINSTANCE instance, LPCDLGTEMPLATEW dialog, HWND owner,
                                       DLGPROC procedure, LPARAM parameter);
BOOL WINAPI EndDialog(HWND dialog, INT_PTR result);
HWND WINAPI GetDlgItem(HWND dialog, int id);
int WINAPI GetDlgCtrlID(HWND control);
BOOL WINAPI SetDlgItemTextW(HWND dialog, int id, LPCWSTR text);
UINT WINAPI GetDlgItemTextW(HWND dialog, int id, LPWSTR buffer, int size);
LRESULT WINAPI SendDlgItemMessageW(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam);
BOOL WINAPI CheckDlgButton(HWND dialog, int id, UINT check);
UINT WINAPI IsDlgButtonChecked(HWND dialog, int id);

// ---- controls -----------------------------------------------------------------------------------------------

#define BS_PUSHBUTTON 0x00u
#define BS_DEFPUSHBUTTON 0x01u
#define BS_AUTOCHECKBOX 0x03u
#define BS_GROUPBOX 0x07u
#define BS_TYPEMASK 0x0Fu
#define BST_UNCHECKED 0
#define BST_CHECKED 1
#define BN_CLICKED 0
#define BM_GETCHECK 0x00F0
#define BM_SETCHECK 0x00F1

#define SS_ICON 0x0003
#define SS_TYPEMASK 0x001F
#define SS_NOTIFY 0x0100
#define STN_CLICKED 0
#define STN_DBLCLK 1
#define STM_SETICON 0x0170

#define ES_AUTOHSCROLL 0x0080
#define EM_LIMITTEXT 0x00C5

#define CBS_DROPDOWNLIST 0x0003
#define CBS_SORT 0x0100
#define CBN_SELCHANGE 1
#define CB_ERR (-1)
#define CB_ADDSTRING 0x0143
#define CB_GETCOUNT 0x0146
#define CB_GETCURSEL 0x0147
#define CB_RESETCONTENT 0x014B
#define CB_SETCURSEL 0x014E
#define CB_GETITEMDATA 0x0150
#define CB_SETITEMDATA 0x0151

#define WM_HSCROLL 0x0114
