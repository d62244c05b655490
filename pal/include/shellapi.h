// The shell: icons in the notification area, and what is opened through it.
#pragma once

#include <windows.h>

#include "guiddef.h"

#define NIM_ADD 0x00000000u
#define NIM_MODIFY 0x00000001u
#define NIM_DELETE 0x00000002u

#define NIF_MESSAGE 0x00000001u
#define NIF_ICON 0x00000002u
#define NIF_TIP 0x00000004u
#define NIF_INFO 0x00000010u

#define NIIF_WARNING 0x00000002u

struct NOTIFYICONDATAW {
  DWORD cbSize;
  HWND hWnd;
  UINT uID;
  UINT uFlags;
  UINT uCallbackMessage;
  HICON hIcon;
  WCHAR szTip[128];
  DWORD dwState;
  DWORD dwStateMask;
  WCHAR szInfo[256];
  union {
    UINT uTimeout;
    UINT uVersion;
  };
  WCHAR szInfoTitle[64];
  DWORD dwInfoFlags;
  GUID guidItem;
  HICON hBalloonIcon;
};
using PNOTIFYICONDATAW = NOTIFYICONDATAW*;

BOOL WINAPI Shell_NotifyIconW(DWORD message, PNOTIFYICONDATAW data);

// ---- starting programs --------------------------------------------------------------------------------------

#define SEE_MASK_NOCLOSEPROCESS 0x00000040u
#define SEE_MASK_FLAG_NO_UI 0x00000400u

struct SHELLEXECUTEINFOW {
  DWORD cbSize;
  ULONG fMask;
  HWND hwnd;
  LPCWSTR lpVerb;
  LPCWSTR lpFile;
  LPCWSTR lpParameters;
  LPCWSTR lpDirectory;
  int nShow;
  HINSTANCE hInstApp;
  LPVOID lpIDList;
  LPCWSTR lpClass;
  HKEY hkeyClass;
  DWORD dwHotKey;
  HANDLE hIcon;
  HANDLE hProcess;
};

// A value above 32 is success.
HINSTANCE WINAPI ShellExecuteW(HWND owner, LPCWSTR verb, LPCWSTR file, LPCWSTR parameters, LPCWSTR directory,
                               int show);
BOOL WINAPI ShellExecuteExW(SHELLEXECUTEINFOW* info);
