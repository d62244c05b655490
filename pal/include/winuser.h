// Windows, messages, timers, message boxes and input.
#pragma once

#include "windef.h"

// ---- windows ------------------------------------------------------------------------------------------------

using WNDPROC = LRESULT(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);
using TIMERPROC = void(CALLBACK*)(HWND, UINT, UINT_PTR, DWORD);
using DLGPROC = INT_PTR(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);

struct WNDCLASSEXW {
  UINT cbSize;
  UINT style;
  WNDPROC lpfnWndProc;
  int cbClsExtra;
  int cbWndExtra;
  HINSTANCE hInstance;
  HICON hIcon;
  HCURSOR hCursor;
  HBRUSH hbrBackground;
  LPCWSTR lpszMenuName;
  LPCWSTR lpszClassName;
  HICON hIconSm;
};

struct CREATESTRUCTW {
  LPVOID lpCreateParams;
  HINSTANCE hInstance;
  HMENU hMenu;
  HWND hwndParent;
  int cy;
  int cx;
  int y;
  int x;
  LONG style;
  LPCWSTR lpszName;
  LPCWSTR lpszClass;
  DWORD dwExStyle;
};

#define CS_VREDRAW 0x0001u
#define CS_HREDRAW 0x0002u
#define WS_OVERLAPPED 0x00000000
#define WS_POPUP 0x80000000
#define WS_CHILD 0x40000000
#define WS_VISIBLE 0x10000000
#define WS_DISABLED 0x08000000
#define WS_CAPTION 0x00C00000
#define WS_SYSMENU 0x00080000
#define WS_THICKFRAME 0x00040000
#define WS_MINIMIZEBOX 0x00020000
#define WS_MAXIMIZEBOX 0x00010000
#define WS_OVERLAPPEDWINDOW \
  (WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX)
#define WS_EX_TOPMOST 0x00000008
#define WS_EX_APPWINDOW 0x00040000
#define CW_USEDEFAULT (static_cast<int>(0x80000000u))
#define GWLP_WNDPROC (-4)
#define GWLP_ID (-12)
#define GWLP_USERDATA (-21)
#define HWND_BROADCAST (reinterpret_cast<HWND>(static_cast<ULONG_PTR>(0xFFFF)))
#define HWND_MESSAGE (reinterpret_cast<HWND>(static_cast<LONG_PTR>(-3)))

#define MAKEINTRESOURCEW(id) (reinterpret_cast<LPWSTR>(static_cast<ULONG_PTR>(static_cast<WORD>(id))))
#define IS_INTRESOURCE(name) ((reinterpret_cast<ULONG_PTR>(name) >> 16) == 0)
#define RT_MENU MAKEINTRESOURCEW(4)
#define RT_DIALOG MAKEINTRESOURCEW(5)
#define RT_STRING MAKEINTRESOURCEW(6)
#define RT_GROUP_ICON MAKEINTRESOURCEW(14)
#define RT_VERSION MAKEINTRESOURCEW(16)
#define IDC_ARROW MAKEINTRESOURCEW(32512)

ATOM WINAPI RegisterClassExW(const WNDCLASSEXW* windowClass);
HWND WINAPI CreateWindowExW(DWORD exStyle, LPCWSTR className, LPCWSTR title, DWORD style, int x, int y,
                            int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                            LPVOID parameter);
BOOL WINAPI DestroyWindow(HWND window);
BOOL WINAPI IsWindow(HWND window);
LRESULT WINAPI DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
HWND WINAPI FindWindowW(LPCWSTR className, LPCWSTR title);
HWND WINAPI GetDesktopWindow();
BOOL WINAPI SetForegroundWindow(HWND window);
HWND WINAPI GetForegroundWindow();
DWORD WINAPI GetWindowThreadProcessId(HWND window, LPDWORD process);
#define ASFW_ANY 0xFFFFFFFFu
// What Windows keeps from a window that does not ask for it.
#define MSGFLT_ALLOW 1
BOOL WINAPI ChangeWindowMessageFilterEx(HWND window, UINT message, DWORD action, PVOID status);
#define DEVICE_NOTIFY_WINDOW_HANDLE 0x0u
PVOID WINAPI RegisterSuspendResumeNotification(HANDLE recipient, DWORD flags);
// The desktop that has the keyboard; refused while that is one of Windows' own.
using HDESK = HANDLE;
#define DESKTOP_READOBJECTS 0x0001u
HDESK WINAPI OpenInputDesktop(DWORD flags, BOOL inherits, DWORD access);
BOOL WINAPI CloseDesktop(HDESK desktop);
BOOL WINAPI AllowSetForegroundWindow(DWORD process);
BOOL WINAPI GetWindowRect(HWND window, LPRECT rect);
BOOL WINAPI ScreenToClient(HWND window, LPPOINT point);
BOOL WINAPI InvalidateRect(HWND window, const RECT* rect, BOOL erase);
LONG_PTR WINAPI GetWindowLongPtrW(HWND window, int index);
LONG_PTR WINAPI SetWindowLongPtrW(HWND window, int index, LONG_PTR value);
HCURSOR WINAPI LoadCursorW(HINSTANCE instance, LPCWSTR name);

// ---- messages -----------------------------------------------------------------------------------------------

struct MSG {
  HWND hwnd;
  UINT message;
  WPARAM wParam;
  LPARAM lParam;
  DWORD time;
  POINT pt;
};
using LPMSG = MSG*;

struct COPYDATASTRUCT {
  ULONG_PTR dwData;
  DWORD cbData;
  PVOID lpData;
};

#define WM_NULL 0x0000
#define WM_CREATE 0x0001
#define WM_DESTROY 0x0002
#define WM_SETTEXT 0x000C
#define WM_GETTEXT 0x000D
#define WM_CLOSE 0x0010
#define WM_QUERYENDSESSION 0x0011
#define WM_QUIT 0x0012
#define WM_ENDSESSION 0x0016
#define WM_COPYDATA 0x004A
#define WM_NCCREATE 0x0081
#define WM_NCDESTROY 0x0082
#define WM_KEYDOWN 0x0100
#define WM_KEYUP 0x0101
#define WM_SYSKEYUP 0x0105
#define WM_INITDIALOG 0x0110
#define WM_COMMAND 0x0111
#define WM_SYSCOMMAND 0x0112
#define WM_TIMER 0x0113
#define WM_MOUSEMOVE 0x0200
#define WM_LBUTTONDOWN 0x0201
#define WM_LBUTTONUP 0x0202
#define WM_LBUTTONDBLCLK 0x0203
#define WM_RBUTTONDOWN 0x0204
#define WM_RBUTTONUP 0x0205
#define WM_POWERBROADCAST 0x0218
#define WM_DEVICECHANGE 0x0219
#define WM_WTSSESSION_CHANGE 0x02B1
#define WM_USER 0x0400
#define WM_APP 0x8000

#define SC_MONITORPOWER 0xF170
#define PBT_APMSUSPEND 0x0004
#define PBT_APMRESUMEAUTOMATIC 0x0012
#define WTS_SESSION_LOCK 0x7
#define WTS_SESSION_UNLOCK 0x8

#define ISMEX_NOSEND 0x0u
#define ISMEX_SEND 0x1u
#define ISMEX_REPLIED 0x8u
#define PM_NOREMOVE 0x0000u
#define PM_REMOVE 0x0001u
#define SMTO_NORMAL 0x0000u
#define SMTO_BLOCK 0x0001u
#define SMTO_ABORTIFHUNG 0x0002u
#define SMTO_NOTIMEOUTIFNOTHUNG 0x0008u
#define USER_TIMER_MINIMUM 10
#define USER_TIMER_MAXIMUM 0x7FFFFFFF

BOOL WINAPI GetMessageW(LPMSG message, HWND window, UINT first, UINT last);
DWORD WINAPI InSendMessageEx(LPVOID reserved);
BOOL WINAPI PeekMessageW(LPMSG message, HWND window, UINT first, UINT last, UINT remove);
BOOL WINAPI TranslateMessage(const MSG* message);
LRESULT WINAPI DispatchMessageW(const MSG* message);
BOOL WINAPI PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT WINAPI SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT WINAPI SendMessageTimeoutW(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT flags,
                                   UINT timeoutMs, PDWORD_PTR result);
BOOL WINAPI SendNotifyMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
void WINAPI PostQuitMessage(int exitCode);
LONG WINAPI GetMessageTime();
UINT WINAPI RegisterWindowMessageW(LPCWSTR name);
UINT_PTR WINAPI SetTimer(HWND window, UINT_PTR id, UINT periodMs, TIMERPROC callback);
BOOL WINAPI KillTimer(HWND window, UINT_PTR id);

// ---- message boxes ------------------------------------------------------------------------------------------

#define MB_OK 0x00000000u
#define MB_OKCANCEL 0x00000001u
#define MB_YESNOCANCEL 0x00000003u
#define MB_YESNO 0x00000004u
#define MB_TYPEMASK 0x0000000Fu
#define MB_ICONERROR 0x00000010u
#define MB_ICONINFORMATION 0x00000040u
#define IDOK 1
#define IDCANCEL 2
#define IDYES 6
#define IDNO 7

int WINAPI MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type);
BOOL WINAPI MessageBeep(UINT type);

// ---- menus --------------------------------------------------------------------------------------------------

#define MF_BYCOMMAND 0x00000000u
#define MF_BYPOSITION 0x00000400u
#define MF_STRING 0x00000000u
#define MF_GRAYED 0x00000001u
#define MF_DISABLED 0x00000002u
#define MF_UNCHECKED 0x00000000u
#define MF_CHECKED 0x00000008u
#define MF_POPUP 0x00000010u
#define MF_END 0x00000080u
#define MF_SEPARATOR 0x00000800u
#define TPM_RIGHTBUTTON 0x0002u
#define TPM_RIGHTALIGN 0x0008u
#define TPM_BOTTOMALIGN 0x0020u

HMENU WINAPI LoadMenuIndirectW(LPCVOID menuTemplate);
BOOL WINAPI DestroyMenu(HMENU menu);
HMENU WINAPI GetSubMenu(HMENU menu, int position);
BOOL WINAPI InsertMenuW(HMENU menu, UINT position, UINT flags, UINT_PTR id, LPCWSTR text);
BOOL WINAPI DeleteMenu(HMENU menu, UINT position, UINT flags);
BOOL WINAPI SetMenuDefaultItem(HMENU menu, UINT item, UINT byPosition);
BOOL WINAPI TrackPopupMenu(HMENU menu, UINT flags, int x, int y, int reserved, HWND window, const RECT* rect);

// ---- pictures and metrics -----------------------------------------------------------------------------------

#define IMAGE_ICON 1u
#define LR_DEFAULTCOLOR 0x0000u
#define SM_CXSCREEN 0
#define SM_CYSCREEN 1
#define SM_CXICON 11
#define SM_CYICON 12
#define SM_CXSMICON 49
#define SM_CYSMICON 50

// A picture that Windows or the program keeps: it is not destroyed.
HICON WINAPI LoadIconW(HINSTANCE instance, LPCWSTR name);
HANDLE WINAPI LoadImageW(HINSTANCE instance, LPCWSTR name, UINT type, int width, int height, UINT flags);
BOOL WINAPI DestroyIcon(HICON icon);
int WINAPI GetSystemMetrics(int metric);
// Windows 10 and later: pixels an inch where the window is, and a measure there.
UINT WINAPI GetDpiForWindow(HWND window);
int WINAPI GetSystemMetricsForDpi(int metric, UINT dpi);
// ---- the end of the session ---------------------------------------------------------------------------------

BOOL WINAPI ShutdownBlockReasonCreate(HWND window, LPCWSTR reason);
BOOL WINAPI ShutdownBlockReasonDestroy(HWND window);

// ---- input --------------------------------------------------------------------------------------------------

#define MOUSEEVENTF_MOVE 0x0001u
#define MOUSEEVENTF_LEFTDOWN 0x0002u
#define MOUSEEVENTF_LEFTUP 0x0004u
#define MOUSEEVENTF_RIGHTDOWN 0x0008u
#define MOUSEEVENTF_RIGHTUP 0x0010u
#define KEYEVENTF_EXTENDEDKEY 0x0001u
#define KEYEVENTF_KEYUP 0x0002u
#define MAPVK_VK_TO_VSC 0u

#define VK_BACK 0x08
#define VK_TAB 0x09
#define VK_RETURN 0x0D
#define VK_SHIFT 0x10
#define VK_CONTROL 0x11
#define VK_MENU 0x12
#define VK_CAPITAL 0x14
#define VK_ESCAPE 0x1B
#define VK_SPACE 0x20
#define VK_PRIOR 0x21
#define VK_NEXT 0x22
#define VK_END 0x23
#define VK_HOME 0x24
#define VK_LEFT 0x25
#define VK_UP 0x26
#define VK_RIGHT 0x27
#define VK_DOWN 0x28
#define VK_INSERT 0x2D
#define VK_DELETE 0x2E
#define VK_LWIN 0x5B
#define VK_RWIN 0x5C
#define VK_LSHIFT 0xA0
#define VK_RSHIFT 0xA1
#define VK_LCONTROL 0xA2
#define VK_RCONTROL 0xA3
#define VK_LMENU 0xA4
#define VK_RMENU 0xA5

BOOL WINAPI GetCursorPos(LPPOINT point);
void WINAPI mouse_event(DWORD flags, DWORD dx, DWORD dy, DWORD data, ULONG_PTR extraInfo);
void WINAPI keybd_event(BYTE virtualKey, BYTE scanCode, DWORD flags, ULONG_PTR extraInfo);
UINT WINAPI MapVirtualKeyExW(UINT code, UINT mapType, HKL layout);
HKL WINAPI GetKeyboardLayout(DWORD threadId);

#define SW_SHOWNORMAL 1

// ---- the end of Windows -------------------------------------------------------------------------------------

#define EWX_SHUTDOWN 0x00000001u
#define EWX_FORCE 0x00000004u
#define EWX_POWEROFF 0x00000008u
#define EWX_FORCEIFHUNG 0x00000010u
#define SHTDN_REASON_FLAG_PLANNED 0x80000000u
#define SHTDN_REASON_MAJOR_POWER 0x00060000u
#define SHTDN_REASON_MINOR_POWER_SUPPLY 0x0000000Au

BOOL WINAPI ExitWindowsEx(UINT flags, DWORD reason);

#include "winuser_dialogs.h"
