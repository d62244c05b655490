// What a window asks Windows to let through to it, or to tell it.
#include <wtsapi32.h>

#include "pal/windows/window_calls.h"

using namespace pal;

namespace {

// As long as a desktop is open.
class DesktopObject : public Object {
 public:
  [[nodiscard]] std::string_view Kind() const override { return "desktop"; }
};

}  // namespace

BOOL WINAPI ChangeWindowMessageFilterEx(HWND window, UINT message, DWORD action, PVOID status) {
  const Call call("ChangeWindowMessageFilterEx");
  if (call.Fails()) return FALSE;
  if (action != MSGFLT_ALLOW || status) Die("ChangeWindowMessageFilterEx with another wish");
  Window* found = FindOrRefuse(call.Get(), window);
  if (!found) return FALSE;
  found->admitted.insert(message);
  return TRUE;
}

PVOID WINAPI RegisterSuspendResumeNotification(HANDLE recipient, DWORD flags) {
  const Call call("RegisterSuspendResumeNotification");
  if (call.Fails()) return nullptr;
  if (flags != DEVICE_NOTIFY_WINDOW_HANDLE) Die("RegisterSuspendResumeNotification of a function");
  Window* found = FindOrRefuse(call.Get(), static_cast<HWND>(recipient));
  if (!found) return nullptr;
  found->hearsOfSleep = true;
  return found;
}

BOOL WINAPI WTSRegisterSessionNotification(HWND window, DWORD flags) {
  const Call call("WTSRegisterSessionNotification");
  if (call.Fails()) return FALSE;
  if (flags != NOTIFY_FOR_THIS_SESSION) Die("WTSRegisterSessionNotification of other sessions");
  Window* found = FindOrRefuse(call.Get(), window);
  if (!found) return FALSE;
  found->hearsOfSession = true;
  return TRUE;
}

HDESK WINAPI OpenInputDesktop(DWORD flags, BOOL inherits, DWORD access) {
  const Call call("OpenInputDesktop");
  if (call.Fails()) return nullptr;
  if (flags != 0 || inherits || access != DESKTOP_READOBJECTS) Die("OpenInputDesktop with other rights");
  if (call->desktop.isLocked) return Refuse(ERROR_ACCESS_DENIED, HDESK{});
  return call->handles.Add(std::make_shared<DesktopObject>());
}

BOOL WINAPI CloseDesktop(HDESK desktop) {
  const Call call("CloseDesktop");
  return call->handles.Close(desktop) ? TRUE : FALSE;
}
