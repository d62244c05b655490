// The right to end Windows, and its end.
#include "pal/machine/state.h"

using namespace pal;

namespace {

constexpr LUID kShutdownPrivilege = {19, 0};

// The token of the one process that there is.
class TokenObject final : public Object {
 public:
  explicit TokenObject(DWORD access) : access_(access) {}

  [[nodiscard]] std::string_view Kind() const override { return "token"; }
  [[nodiscard]] bool MayAdjust() const { return (access_ & TOKEN_ADJUST_PRIVILEGES) != 0; }

 private:
  DWORD access_;
};

}  // namespace

HANDLE WINAPI GetCurrentProcess() {
  return reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1));
}

BOOL WINAPI OpenProcessToken(HANDLE process, DWORD access, PHANDLE token) {
  const Call call("OpenProcessToken");
  if (call.Fails()) return FALSE;
  if (process != GetCurrentProcess()) Die("OpenProcessToken of another process");
  *token = call->handles.Add(std::make_shared<TokenObject>(access));
  return TRUE;
}

BOOL WINAPI LookupPrivilegeValueW(LPCWSTR system, LPCWSTR name, PLUID luid) {
  const Call call("LookupPrivilegeValueW");
  if (call.Fails()) return FALSE;
  if (system) Die("LookupPrivilegeValueW of another system");
  if (std::u16string_view(name) != u"SeShutdownPrivilege") return Refuse(ERROR_NO_SUCH_PRIVILEGE, FALSE);
  *luid = kShutdownPrivilege;
  return TRUE;
}

BOOL WINAPI AdjustTokenPrivileges(HANDLE token, BOOL disableAll, PTOKEN_PRIVILEGES wanted, DWORD,
                                  PTOKEN_PRIVILEGES, LPDWORD) {
  const Call call("AdjustTokenPrivileges");
  if (call.Fails()) return call.Error() == ERROR_NOT_ALL_ASSIGNED;
  const auto object = call->handles.Find<TokenObject>(token);
  if (!object) return Refuse(ERROR_INVALID_HANDLE, FALSE);
  if (disableAll || wanted->PrivilegeCount != 1) Die("AdjustTokenPrivileges of anything but one privilege");
  if (!object->MayAdjust()) return Refuse(ERROR_ACCESS_DENIED, FALSE);
  const LUID_AND_ATTRIBUTES& privilege = wanted->Privileges[0];
  if (privilege.Luid.LowPart != kShutdownPrivilege.LowPart) return Refuse(ERROR_NOT_ALL_ASSIGNED, TRUE);
  call->power.mayShutDown = (privilege.Attributes & SE_PRIVILEGE_ENABLED) != 0;
  SetLastError(ERROR_SUCCESS);
  return TRUE;
}

BOOL WINAPI ExitWindowsEx(UINT flags, DWORD reason) {
  const Call call("ExitWindowsEx");
  if (call.Fails()) return FALSE;
  if (!call->power.mayShutDown) return Refuse(ERROR_PRIVILEGE_NOT_HELD, FALSE);
  call->Emit(WindowsExit{flags, reason});
  return TRUE;
}
