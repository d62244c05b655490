#include "system/window_requests.h"

#include <wtsapi32.h>

#include "base/handles.h"
#include "system/library_binding.h"
#include "system/system_state.h"

namespace veltra {
namespace {

void LogRefusal(const WCHAR* call) {
  Log().WriteError(TEXT("Err main window"), FormatText(TEXT("%s: Windows error %d"), call, GetLastError()));
}

}  // namespace

void AdmitFromLowerRights(HWND window, std::span<const UINT> messages) {
  using Change = BOOL(WINAPI*)(HWND, UINT, DWORD, PVOID);
  const auto change = FindExport<Change>(GetModuleHandleW(TEXT("user32.dll")), "ChangeWindowMessageFilterEx");
  if (!change) return;
  for (const UINT message : messages)
    if (!change(window, message, MSGFLT_ALLOW, nullptr)) LogRefusal(TEXT("ChangeWindowMessageFilterEx"));
}

void AskForSuspendAndResume(HWND window) {
  using Ask = PVOID(WINAPI*)(HANDLE, DWORD);
  const auto ask = FindExport<Ask>(GetModuleHandleW(TEXT("user32.dll")), "RegisterSuspendResumeNotification");
  if (ask && !ask(window, DEVICE_NOTIFY_WINDOW_HANDLE)) LogRefusal(TEXT("RegisterSuspendResumeNotification"));
}

// The library stays: Windows calls it until the end.
void AskForLockAndUnlock(HWND window) {
  using Ask = BOOL(WINAPI*)(HWND, DWORD);
  const auto ask = FindExport<Ask>(LoadSystemLibrary(TEXT("wtsapi32.dll")), "WTSRegisterSessionNotification");
  if (ask && !ask(window, NOTIFY_FOR_THIS_SESSION)) LogRefusal(TEXT("WTSRegisterSessionNotification"));
}

}  // namespace veltra
