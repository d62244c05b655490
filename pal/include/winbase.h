// Kernel calls: handles, files, serial ports, threads, time, modules, resources.
#pragma once

#include "windef.h"

// ---- errors and handles -------------------------------------------------------------------------------------

DWORD WINAPI GetLastError();
BOOL WINAPI CloseHandle(HANDLE handle);
void WINAPI OutputDebugStringW(LPCWSTR text);

// ---- files --------------------------------------------------------------------------------------------------

struct SECURITY_ATTRIBUTES {
  DWORD nLength;
  LPVOID lpSecurityDescriptor;
  BOOL bInheritHandle;
};
using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;

struct OVERLAPPED {
  ULONG_PTR Internal;
  ULONG_PTR InternalHigh;
  DWORD Offset;
  DWORD OffsetHigh;
  HANDLE hEvent;
};
using LPOVERLAPPED = OVERLAPPED*;

struct WIN32_FIND_DATAW {
  DWORD dwFileAttributes;
  FILETIME ftCreationTime;
  FILETIME ftLastAccessTime;
  FILETIME ftLastWriteTime;
  DWORD nFileSizeHigh;
  DWORD nFileSizeLow;
  DWORD dwReserved0;
  DWORD dwReserved1;
  WCHAR cFileName[MAX_PATH];
  WCHAR cAlternateFileName[14];
};
using LPWIN32_FIND_DATAW = WIN32_FIND_DATAW*;

#define GENERIC_READ 0x80000000u
#define GENERIC_WRITE 0x40000000u
#define FILE_SHARE_READ 0x00000001u
#define FILE_SHARE_WRITE 0x00000002u
#define CREATE_ALWAYS 2
#define OPEN_EXISTING 3
#define OPEN_ALWAYS 4
#define FILE_ATTRIBUTE_DIRECTORY 0x00000010u
#define FILE_ATTRIBUTE_NORMAL 0x00000080u
#define INVALID_FILE_ATTRIBUTES 0xFFFFFFFFu
#define FILE_FLAG_OVERLAPPED 0x40000000u
#define FILE_FLAG_SEQUENTIAL_SCAN 0x08000000u
#define FILE_END 2
#define MOVEFILE_REPLACE_EXISTING 0x00000001u

HANDLE WINAPI CreateFileW(LPCWSTR name, DWORD access, DWORD shareMode, LPSECURITY_ATTRIBUTES security,
                          DWORD disposition, DWORD flagsAndAttributes, HANDLE templateFile);
BOOL WINAPI ReadFile(HANDLE file, LPVOID buffer, DWORD count, LPDWORD transferred, LPOVERLAPPED overlapped);
BOOL WINAPI WriteFile(HANDLE file, LPCVOID buffer, DWORD count, LPDWORD transferred, LPOVERLAPPED overlapped);
BOOL WINAPI GetOverlappedResult(HANDLE file, LPOVERLAPPED overlapped, LPDWORD transferred, BOOL wait);
BOOL WINAPI GetFileSizeEx(HANDLE file, PLARGE_INTEGER size);
BOOL WINAPI SetFilePointerEx(HANDLE file, LARGE_INTEGER distance, PLARGE_INTEGER position, DWORD method);
BOOL WINAPI CopyFileW(LPCWSTR from, LPCWSTR to, BOOL failIfExists);
BOOL WINAPI MoveFileExW(LPCWSTR from, LPCWSTR to, DWORD flags);
BOOL WINAPI DeleteFileW(LPCWSTR name);
BOOL WINAPI CreateDirectoryW(LPCWSTR name, LPSECURITY_ATTRIBUTES security);
DWORD WINAPI GetFileAttributesW(LPCWSTR name);
DWORD WINAPI GetTempPathW(DWORD length, LPWSTR buffer);
HANDLE WINAPI FindFirstFileW(LPCWSTR pattern, LPWIN32_FIND_DATAW found);
BOOL WINAPI FindClose(HANDLE search);

// ---- private-profile files ----------------------------------------------------------------------------------

DWORD WINAPI GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR defaultText, LPWSTR result,
                                      DWORD size, LPCWSTR fileName);
UINT WINAPI GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT defaultNumber, LPCWSTR fileName);
DWORD WINAPI GetPrivateProfileSectionW(LPCWSTR section, LPWSTR lines, DWORD size, LPCWSTR fileName);
BOOL WINAPI WritePrivateProfileSectionW(LPCWSTR section, LPCWSTR lines, LPCWSTR fileName);

// ---- serial ports -------------------------------------------------------------------------------------------

struct DCB {
  DWORD DCBlength;
  DWORD BaudRate;
  DWORD fBinary : 1;
  DWORD fParity : 1;
  DWORD fOutxCtsFlow : 1;
  DWORD fOutxDsrFlow : 1;
  DWORD fDtrControl : 2;
  DWORD fDsrSensitivity : 1;
  DWORD fTXContinueOnXoff : 1;
  DWORD fOutX : 1;
  DWORD fInX : 1;
  DWORD fErrorChar : 1;
  DWORD fNull : 1;
  DWORD fRtsControl : 2;
  DWORD fAbortOnError : 1;
  DWORD fDummy2 : 17;
  WORD wReserved;
  WORD XonLim;
  WORD XoffLim;
  BYTE ByteSize;
  BYTE Parity;
  BYTE StopBits;
  char XonChar;
  char XoffChar;
  char ErrorChar;
  char EofChar;
  char EvtChar;
  WORD wReserved1;
};
using LPDCB = DCB*;

struct COMMTIMEOUTS {
  DWORD ReadIntervalTimeout;
  DWORD ReadTotalTimeoutMultiplier;
  DWORD ReadTotalTimeoutConstant;
  DWORD WriteTotalTimeoutMultiplier;
  DWORD WriteTotalTimeoutConstant;
};
using LPCOMMTIMEOUTS = COMMTIMEOUTS*;

struct COMSTAT {
  DWORD fCtsHold : 1;
  DWORD fDsrHold : 1;
  DWORD fRlsdHold : 1;
  DWORD fXoffHold : 1;
  DWORD fXoffSent : 1;
  DWORD fEof : 1;
  DWORD fTxim : 1;
  DWORD fReserved : 25;
  DWORD cbInQue;
  DWORD cbOutQue;
};
using LPCOMSTAT = COMSTAT*;

#define NOPARITY 0
#define ONESTOPBIT 0
#define RTS_CONTROL_ENABLE 1
#define RTS_CONTROL_HANDSHAKE 2
#define DTR_CONTROL_ENABLE 1
#define EV_RXCHAR 0x0001u
#define PURGE_TXABORT 0x0001u
#define PURGE_RXABORT 0x0002u
#define PURGE_TXCLEAR 0x0004u
#define PURGE_RXCLEAR 0x0008u

BOOL WINAPI GetCommTimeouts(HANDLE port, LPCOMMTIMEOUTS timeouts);
BOOL WINAPI SetCommTimeouts(HANDLE port, LPCOMMTIMEOUTS timeouts);
BOOL WINAPI GetCommState(HANDLE port, LPDCB dcb);
BOOL WINAPI SetCommState(HANDLE port, LPDCB dcb);
BOOL WINAPI PurgeComm(HANDLE port, DWORD flags);
BOOL WINAPI SetCommMask(HANDLE port, DWORD events);
BOOL WINAPI WaitCommEvent(HANDLE port, LPDWORD events, LPOVERLAPPED overlapped);
BOOL WINAPI ClearCommError(HANDLE port, LPDWORD errors, LPCOMSTAT status);

// ---- threads and synchronisation ----------------------------------------------------------------------------

#define INFINITE 0xFFFFFFFFu
#define WAIT_OBJECT_0 0u
#define WAIT_FAILED 0xFFFFFFFFu

using LPTHREAD_START_ROUTINE = DWORD(WINAPI*)(LPVOID);

HANDLE WINAPI CreateMutexW(LPSECURITY_ATTRIBUTES security, BOOL initialOwner, LPCWSTR name);
HANDLE WINAPI CreateEventW(LPSECURITY_ATTRIBUTES security, BOOL manualReset, BOOL initialState, LPCWSTR name);
BOOL WINAPI SetEvent(HANDLE event);
DWORD WINAPI WaitForSingleObject(HANDLE object, DWORD milliseconds);
HANDLE WINAPI CreateThread(LPSECURITY_ATTRIBUTES security, SIZE_T stackSize, LPTHREAD_START_ROUTINE start,
                           LPVOID parameter, DWORD flags, LPDWORD threadId);
LPWSTR WINAPI GetCommandLineW();
void WINAPI Sleep(DWORD milliseconds);

// ---- time and power -----------------------------------------------------------------------------------------

struct SYSTEMTIME {
  WORD wYear;
  WORD wMonth;
  WORD wDayOfWeek;
  WORD wDay;
  WORD wHour;
  WORD wMinute;
  WORD wSecond;
  WORD wMilliseconds;
};
using LPSYSTEMTIME = SYSTEMTIME*;

#define ES_SYSTEM_REQUIRED 0x00000001u
#define ES_DISPLAY_REQUIRED 0x00000002u
#define ES_CONTINUOUS 0x80000000u

using EXECUTION_STATE = DWORD;

void WINAPI GetLocalTime(LPSYSTEMTIME time);
DWORD WINAPI GetTickCount();
EXECUTION_STATE WINAPI SetThreadExecutionState(EXECUTION_STATE flags);

// ---- modules and resources ----------------------------------------------------------------------------------

#define LOAD_WITH_ALTERED_SEARCH_PATH 0x00000008u
#define LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR 0x00000100u
#define LOAD_LIBRARY_SEARCH_APPLICATION_DIR 0x00000200u
#define LOAD_LIBRARY_SEARCH_SYSTEM32 0x00000800u
#define SEM_FAILCRITICALERRORS 0x0001u
#define SEM_NOOPENFILEERRORBOX 0x8000u

// The two that a program looks up by name, because old versions of Windows lack them.
BOOL WINAPI IsWow64Process(HANDLE process, PBOOL isWow64);
BOOLEAN WINAPI Wow64EnableWow64FsRedirection(BOOLEAN enable);
HMODULE WINAPI GetModuleHandleW(LPCWSTR name);
DWORD WINAPI GetModuleFileNameW(HMODULE module, LPWSTR name, DWORD size);
UINT WINAPI SetErrorMode(UINT mode);
BOOL WINAPI SetDllDirectoryW(LPCWSTR directory);
BOOL WINAPI SetDefaultDllDirectories(DWORD places);
HMODULE WINAPI LoadLibraryExW(LPCWSTR name, HANDLE file, DWORD flags);
BOOL WINAPI FreeLibrary(HMODULE module);
FARPROC WINAPI GetProcAddress(HMODULE module, LPCSTR name);
HRSRC WINAPI FindResourceExW(HMODULE module, LPCWSTR type, LPCWSTR name, WORD language);
HGLOBAL WINAPI LoadResource(HMODULE module, HRSRC resource);
LPVOID WINAPI LockResource(HGLOBAL resource);
DWORD WINAPI SizeofResource(HMODULE module, HRSRC resource);

// ---- version of Windows -------------------------------------------------------------------------------------

struct OSVERSIONINFOEXW {
  DWORD dwOSVersionInfoSize;
  DWORD dwMajorVersion;
  DWORD dwMinorVersion;
  DWORD dwBuildNumber;
  DWORD dwPlatformId;
  WCHAR szCSDVersion[128];
  WORD wServicePackMajor;
  WORD wServicePackMinor;
  WORD wSuiteMask;
  BYTE wProductType;
  BYTE wReserved;
};
using LPOSVERSIONINFOEXW = OSVERSIONINFOEXW*;

#define VER_MINORVERSION 0x00000001u
#define VER_MAJORVERSION 0x00000002u
#define VER_SERVICEPACKMAJOR 0x00000020u
#define VER_GREATER_EQUAL 3

ULONGLONG WINAPI VerSetConditionMask(ULONGLONG conditions, DWORD typeMask, BYTE condition);
BOOL WINAPI VerifyVersionInfoW(LPOSVERSIONINFOEXW version, DWORD typeMask, DWORDLONG conditions);

// ---- privileges ---------------------------------------------------------------------------------------------

struct LUID {
  DWORD LowPart;
  LONG HighPart;
};
using PLUID = LUID*;

struct LUID_AND_ATTRIBUTES {
  LUID Luid;
  DWORD Attributes;
};

struct TOKEN_PRIVILEGES {
  DWORD PrivilegeCount;
  LUID_AND_ATTRIBUTES Privileges[1];
};
using PTOKEN_PRIVILEGES = TOKEN_PRIVILEGES*;

#define TOKEN_QUERY 0x0008u
#define TOKEN_ADJUST_PRIVILEGES 0x0020u
#define SE_PRIVILEGE_ENABLED 0x00000002u

#define PROCESS_QUERY_INFORMATION 0x0400u

// The length, or the room that is wanted when `size` does not do.
DWORD WINAPI GetCurrentDirectoryW(DWORD size, LPWSTR directory);
BOOL WINAPI SetCurrentDirectoryW(LPCWSTR directory);

// Ends all that waits on the handle, whichever thread began it.
BOOL WINAPI CancelIoEx(HANDLE file, LPOVERLAPPED overlapped);

HANDLE WINAPI GetCurrentProcess();
HANDLE WINAPI OpenProcess(DWORD access, BOOL inherits, DWORD id);
BOOL WINAPI OpenProcessToken(HANDLE process, DWORD access, PHANDLE token);
BOOL WINAPI LookupPrivilegeValueW(LPCWSTR system, LPCWSTR name, PLUID luid);
// Succeeds also when it adjusted nothing: the last error is ERROR_NOT_ALL_ASSIGNED then.
BOOL WINAPI AdjustTokenPrivileges(HANDLE token, BOOL disableAll, PTOKEN_PRIVILEGES wanted, DWORD length,
                                  PTOKEN_PRIVILEGES before, LPDWORD lengthBefore);
