// Version information of a file.
#pragma once

#include "windef.h"

#define VS_VERSION_INFO 1
#define VS_FFI_FILEFLAGSMASK 0x0000003F
#define VOS_NT_WINDOWS32 0x00040004
#define VFT_APP 1
#define VFT2_UNKNOWN 0

DWORD WINAPI GetFileVersionInfoSizeW(LPCWSTR fileName, LPDWORD handle);
BOOL WINAPI GetFileVersionInfoW(LPCWSTR fileName, DWORD handle, DWORD size, LPVOID data);
// `length` counts characters, the terminator included, of a text and bytes of anything else.
BOOL WINAPI VerQueryValueW(LPCVOID block, LPCWSTR path, LPVOID* value, PUINT length);
