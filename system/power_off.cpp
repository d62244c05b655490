#include "system/power_off.h"

#include "base/handles.h"
#include "system/system_state.h"

namespace veltra {
namespace {

constexpr const WCHAR* kTag = TEXT("Power off");

// Windows reports success also when it adjusted nothing; only the last error tells.
bool EnableShutdownPrivilege() {
  HANDLE opened = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &opened)) return false;
  const UniqueKernelObject token(opened);
  TOKEN_PRIVILEGES privileges = {};
  privileges.PrivilegeCount = 1;
  privileges.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
  LookupPrivilegeValueW(nullptr, TEXT("SeShutdownPrivilege"), &privileges.Privileges[0].Luid);
  AdjustTokenPrivileges(token.Get(), FALSE, &privileges, 0, nullptr, nullptr);
  return GetLastError() == ERROR_SUCCESS;
}

}  // namespace

bool PowerOffSystem(UINT flags, DWORD reason, const WideText& why) {
  Log().Write(kTag, why);
  if (EnableShutdownPrivilege() && ExitWindowsEx(flags, reason)) return true;
  Log().WriteError(kTag, FormatText(TEXT("refused by Windows, error %u"), GetLastError()));
  return false;
}

}  // namespace veltra
