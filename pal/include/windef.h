// Types of the Windows API. LONG and DWORD have 32 bits as on Windows, whatever the host's long has.
#pragma once

#ifndef RC_INVOKED
#include <cstddef>
#include <cstdint>
#endif

#define WINAPI
#define WINAPIV
#define CALLBACK
#define TEXT_WIDE_(text) u##text
#define TEXT(text) TEXT_WIDE_(text)

#define FALSE 0
#define TRUE 1
#define MAX_PATH 260
#define MAXDWORD 0xFFFFFFFF

using BOOL = int;
using BOOLEAN = unsigned char;
using BYTE = uint8_t;
using UCHAR = uint8_t;
using CHAR = char;
using WCHAR = char16_t;
using SHORT = int16_t;
using WORD = uint16_t;
using INT = int;
using UINT = unsigned int;
using LONG = int32_t;
using ULONG = uint32_t;
using DWORD = uint32_t;
using LONGLONG = int64_t;
using ULONGLONG = uint64_t;
using DWORDLONG = uint64_t;
using INT_PTR = intptr_t;
using UINT_PTR = uintptr_t;
using LONG_PTR = intptr_t;
using ULONG_PTR = uintptr_t;
using DWORD_PTR = uintptr_t;
using SIZE_T = size_t;
using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;
using LRESULT = LONG_PTR;
using HRESULT = LONG;
using LSTATUS = LONG;
using ATOM = WORD;
using LANGID = WORD;
using LCID = DWORD;
using COLORREF = DWORD;
using ACCESS_MASK = DWORD;
using REGSAM = ACCESS_MASK;

using PVOID = void*;
using LPVOID = void*;
using LPCVOID = const void*;
using LPBOOL = BOOL*;
using PBOOL = BOOL*;
using LPBYTE = BYTE*;
using LPDWORD = DWORD*;
using PUINT = UINT*;
using PDWORD_PTR = DWORD_PTR*;
using LPSTR = CHAR*;
using LPCSTR = const CHAR*;
using LPCCH = const CHAR*;
using LPWSTR = WCHAR*;
using PWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;
using LPCWCH = const WCHAR*;

using HANDLE = void*;
using PHANDLE = HANDLE*;
using HGLOBAL = HANDLE;
using HGDIOBJ = void*;

// Each kind of handle is a type of its own, so that the compiler tells them apart.
#define DECLARE_HANDLE(name) \
  struct name##__ {          \
    int unused;              \
  };                         \
  using name = name##__*

DECLARE_HANDLE(HINSTANCE);
DECLARE_HANDLE(HWND);
DECLARE_HANDLE(HMENU);
DECLARE_HANDLE(HICON);
DECLARE_HANDLE(HBRUSH);
DECLARE_HANDLE(HBITMAP);
DECLARE_HANDLE(HFONT);
DECLARE_HANDLE(HDC);
DECLARE_HANDLE(HRSRC);
DECLARE_HANDLE(HKEY);
DECLARE_HANDLE(HKL);
using HMODULE = HINSTANCE;
using HCURSOR = HICON;
using PHKEY = HKEY*;

using FARPROC = INT_PTR(WINAPI*)();

#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)))

#define LOWORD(value) (static_cast<WORD>(static_cast<DWORD_PTR>(value) & 0xFFFF))
#define HIWORD(value) (static_cast<WORD>((static_cast<DWORD_PTR>(value) >> 16) & 0xFFFF))
#define MAKELONG(low, high) \
  (static_cast<LONG>(static_cast<DWORD>(LOWORD(low)) | (static_cast<DWORD>(LOWORD(high)) << 16)))
#define MAKEWPARAM(low, high) (static_cast<WPARAM>(static_cast<DWORD>(MAKELONG(low, high))))
#define MAKELPARAM(low, high) (static_cast<LPARAM>(static_cast<DWORD>(MAKELONG(low, high))))

struct POINT {
  LONG x;
  LONG y;
};
struct SIZE {
  LONG cx;
  LONG cy;
};
struct RECT {
  LONG left;
  LONG top;
  LONG right;
  LONG bottom;
};
using LPPOINT = POINT*;
using LPRECT = RECT*;

struct FILETIME {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
};

union LARGE_INTEGER {
  struct {
    DWORD LowPart;
    LONG HighPart;
  } u;
  LONGLONG QuadPart;
};
using PLARGE_INTEGER = LARGE_INTEGER*;
