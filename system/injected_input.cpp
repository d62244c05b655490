#include "system/injected_input.h"

#include <utility>

#include "base/handles.h"
#include "system/system_state.h"

namespace veltra {
namespace {

// Windows lets nobody look at a program of higher rights.
bool IsOutOfReach(HWND window) {
  DWORD id = 0;
  GetWindowThreadProcessId(window, &id);
  const UniqueKernelObject process(OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, id));  // 0 is no process
  return !process && GetLastError() == ERROR_ACCESS_DENIED;
}

}  // namespace

bool IsScreenTaken() {
  return !UniqueDesktop(OpenInputDesktop(0, FALSE, DESKTOP_READOBJECTS));
}

void NoteObstacle(HWND receiver) {
  const WCHAR* obstacle = nullptr;
  if (IsScreenTaken())
    obstacle = TEXT("refused by Windows, its own desktop has the screen");
  else if (receiver && IsOutOfReach(receiver))
    obstacle = TEXT("refused by Windows, the window in front has higher rights");
  if (std::exchange(System().inputObstacle, obstacle) != obstacle && obstacle)
    Log().WriteError(TEXT("Input"), obstacle);
}

void InjectKey(int32_t virtualKey, bool down) {
  if (down) NoteObstacle(GetForegroundWindow());
  const UINT scan = MapVirtualKeyExW(static_cast<UINT>(virtualKey), MAPVK_VK_TO_VSC, GetKeyboardLayout(0));
  keybd_event(static_cast<BYTE>(virtualKey), static_cast<BYTE>(scan), down ? 0 : KEYEVENTF_KEYUP, 0);
}

}  // namespace veltra
