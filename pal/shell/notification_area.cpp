#include "pal/shell/notification_area.h"

#include <algorithm>

#include "pal/windows/window_calls.h"

namespace pal {
namespace {

constexpr LONG kIconWidth = 24;
constexpr POINT kFirstIconPlace = {1000, 756};  // the newest icon's, at the right end

}  // namespace

void NotificationArea::StopShell() {
  const MachineLock lock(state_.mutex);
  isUp = false;
  icons.clear();
}

void NotificationArea::StartShell() {
  {
    const MachineLock lock(state_.mutex);
    isUp = true;
  }
  Announce();
}

void NotificationArea::Announce() {
  const MachineLock lock(state_.mutex);
  const UINT created = state_.desktop.RegisterMessage(u"TaskbarCreated");
  for (const HWND handle : state_.desktop.TopLevel()) {
    const Window* window = state_.desktop.Find(handle);
    if (state_.desktop.Reaches(*window, created))
      SendToThread(state_, *window->thread, handle, created, 0, 0);
  }
}

void NotificationArea::RestartShell() {
  StopShell();
  StartShell();
}

std::optional<TrayIcon> NotificationArea::Find(UINT id) const {
  const MachineLock lock(state_.mutex);
  const auto icon =
      std::find_if(icons.rbegin(), icons.rend(), [id](const TrayIcon& one) { return one.id == id; });
  return icon == icons.rend() ? std::nullopt : std::optional(*icon);
}

bool NotificationArea::Click(UINT id) {
  return Touch(id, {WM_LBUTTONDOWN, WM_LBUTTONUP});
}

bool NotificationArea::DoubleClick(UINT id) {
  return Touch(id, {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP});
}

bool NotificationArea::RightClick(UINT id) {
  return Touch(id, {WM_RBUTTONDOWN, WM_RBUTTONUP});
}

// The pointer comes over the icon, and the buttons do what is listed.
bool NotificationArea::Touch(UINT id, std::initializer_list<UINT> messages) {
  const MachineLock lock(state_.mutex);
  std::erase_if(icons, [this](const TrayIcon& icon) { return !state_.desktop.Find(icon.window); });
  const auto icon = std::ranges::find(icons, id, &TrayIcon::id);
  if (icon == icons.end()) return false;
  const auto place = static_cast<LONG>(icons.end() - icon) - 1;
  state_.desktop.cursor = {kFirstIconPlace.x - place * kIconWidth, kFirstIconPlace.y};
  const TrayIcon touched = *icon;
  PostTo(state_, touched.window, touched.callbackMessage, id, WM_MOUSEMOVE);
  for (const UINT message : messages) PostTo(state_, touched.window, touched.callbackMessage, id, message);
  return true;
}

}  // namespace pal
