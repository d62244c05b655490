// Version information of a file.
#pragma once

#include "windef.h"

#define VS_VERSION_INFO 1
#define VS_FFI_FILEFLAGSMASK 0x0000003F
#define VOS_NT_WINDOWS32 0x00040004
#define VFT_APP 1
#define VFT2_UNKNOWN 0

struct VS_FIXEDFILEINFO {
  DWORD dwSignature;
  DWORD dwStrucVersion;
  DWORD dwFileVersionMS;
  DWORD dwFileVersionLS;
  DWORD dwProductVersionMS;
  DWORD dwProductVersionLS;
  DWORD dwFileFlagsMask;
  DWORD dwFileFlags;
  DWORD dwFileOS;
  DWORD dwFileType;
  DWORD dwFileSubtype;
  DWORD dwFileDateMS;
  DWORD dwFileDateLS;
};

DWORD WINAPI GetFileVersionInfoSizeW(LPCWSTR fileName, LPDWORD handle);
BOOL WINAPI GetFileVersionInfoW(LPCWSTR fileName, DWORD handle, DWORD size, LPVOID data);
// `length` counts characters, the terminator included, of a text and bytes of anything else.
BOOL WINAPI VerQueryValueW(LPCVOID block, LPCWSTR path, LPVOID* value, PUINT length);
