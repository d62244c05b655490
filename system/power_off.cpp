#include "system/power_off.h"

#include "base/handles.h"

namespace veltra {

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

bool PowerOffSystem() {
  return EnableShutdownPrivilege() &&
         ExitWindowsEx(EWX_POWEROFF | EWX_FORCE, SHTDN_REASON_MAJOR_POWER | SHTDN_REASON_MINOR_POWER_SUPPLY);
}

}  // namespace veltra
