// The notification area of the taskbar.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace pal {

struct State;

// An icon in the notification area, as the person sees it.
struct TrayIcon {
  HWND window = nullptr;
  UINT id = 0;
  UINT callbackMessage = 0;
  int picture = 0;  // number of its icon resource, 0 for none
  std::u16string tooltip;
};

class NotificationArea {
 public:
  explicit NotificationArea(State& state) : state_(state) {}

  // Without a shell there is no taskbar: Shell_NotifyIconW fails. A shell that comes up knows no icon and
  // tells every top-level window "TaskbarCreated". The machine begins with a shell.
  void StopShell();
  void StartShell();
  void RestartShell();
  // The shell tells the same, as for a display of other resolution, and forgets nothing.
  void Announce();
  [[nodiscard]] std::optional<TrayIcon> Find(UINT id) const;  // the newest of that number
  // The person. False when no such icon stands. The pointer stays where the icon is.
  bool Click(UINT id);
  bool DoubleClick(UINT id);
  bool RightClick(UINT id);

  // ---- for the calls of Windows ----
  bool isUp = true;
  std::vector<TrayIcon> icons;  // in the order of their adding; a dead program's stays until it is clicked

 private:
  bool Touch(UINT id, std::initializer_list<UINT> messages);

  State& state_;
};

}  // namespace pal
