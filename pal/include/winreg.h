// Registry calls. They return an error code and leave the last error alone.
#pragma once

#include "winbase.h"

#define PREDEFINED_KEY_(number) (reinterpret_cast<HKEY>(static_cast<LONG_PTR>(static_cast<LONG>(number))))
#define HKEY_CURRENT_USER PREDEFINED_KEY_(0x80000001u)
#define HKEY_LOCAL_MACHINE PREDEFINED_KEY_(0x80000002u)

#define KEY_QUERY_VALUE 0x0001u
#define KEY_SET_VALUE 0x0002u
#define KEY_CREATE_SUB_KEY 0x0004u
#define KEY_READ 0x00020019u
#define KEY_WRITE 0x00020006u
#define KEY_ALL_ACCESS 0x000F003Fu

#define REG_OPTION_NON_VOLATILE 0u

#define REG_NONE 0u
#define REG_SZ 1u
#define REG_DWORD 4u

LSTATUS WINAPI RegOpenKeyExW(HKEY key, LPCWSTR path, DWORD options, REGSAM access, PHKEY opened);
LSTATUS WINAPI RegCreateKeyExW(HKEY key, LPCWSTR path, DWORD reserved, LPWSTR keyClass, DWORD options,
                               REGSAM access, LPSECURITY_ATTRIBUTES security, PHKEY opened,
                               LPDWORD disposition);
LSTATUS WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                                LPDWORD size);
LSTATUS WINAPI RegEnumValueW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameLength, LPDWORD reserved,
                             LPDWORD type, LPBYTE data, LPDWORD size);
LSTATUS WINAPI RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                              DWORD size);
LSTATUS WINAPI RegCloseKey(HKEY key);
