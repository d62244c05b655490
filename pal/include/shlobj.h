// Folders of the shell.
#pragma once

#include <windows.h>

#define CSIDL_COMMON_DOCUMENTS 0x002E
#define CSIDL_FLAG_CREATE 0x8000
#define SHGFP_TYPE_CURRENT 0u

HRESULT WINAPI SHGetFolderPathW(HWND owner, int folder, HANDLE token, DWORD flags, LPWSTR path);
