// The machine's outside: notification area, menus, foreground and playback, as the person sees and touches
// them.
#include <algorithm>

#include "pal/machine/effect_words.h"
#include "pal/windows/window_calls.h"

namespace pal {
namespace {

constexpr LONG kIconWidth = 24;
constexpr POINT kFirstIconPlace = {1000, 756};  // the newest icon's, at the right end

template <class Wanted>
const MenuItem* FindChoice(const std::vector<MenuItem>& items, const Wanted& isWanted) {
  for (const MenuItem& item : items) {
    if (!item.popup.empty()) {
      if (const MenuItem* inside = FindChoice(item.popup, isWanted)) return inside;
    } else if (!item.isSeparator && !item.isGrayed && isWanted(item)) {
      return &item;
    }
  }
  return nullptr;
}

template <class Wanted>
bool Choose(State& state, const Wanted& isWanted) {
  if (!state.menus.open) return false;
  const std::vector<MenuItem> items = state.menus.Show(state.menus.open->menu);
  const MenuItem* item = FindChoice(items, isWanted);
  if (!item) return false;
  ChooseFromMenu(state, item->command);
  return true;
}

void Announce(State& state) {
  const UINT created = state.desktop.RegisterMessage(u"TaskbarCreated");
  for (const HWND handle : state.desktop.TopLevel()) {
    const Window* window = state.desktop.Find(handle);
    if (!window->thread) continue;
    auto sent = std::make_shared<SentMessage>();
    sent->window = handle;
    sent->message = created;
    window->thread->queue.Send(std::move(sent));
  }
  state.scheduler.Notify();
}

// The pointer comes over the icon, and the buttons do what is listed. False when no such icon stands.
bool Touch(State& state, UINT id, std::initializer_list<UINT> messages) {
  auto& icons = state.notificationArea.icons;
  std::erase_if(icons, [&](const TrayIcon& icon) { return !state.desktop.Find(icon.window); });
  const auto icon = std::ranges::find(icons, id, &TrayIcon::id);
  if (icon == icons.end()) return false;
  const auto place = static_cast<LONG>(icons.end() - icon) - 1;
  state.cursor = {kFirstIconPlace.x - place * kIconWidth, kFirstIconPlace.y};
  const TrayIcon touched = *icon;
  PostTo(state, touched.window, touched.callbackMessage, id, WM_MOUSEMOVE);
  for (const UINT message : messages) PostTo(state, touched.window, touched.callbackMessage, id, message);
  return true;
}

}  // namespace

// ---- notification area ------------------------------------------------------------------------------------

void Machine::StopShell() {
  const MachineLock lock(state_->mutex);
  state_->notificationArea.isUp = false;
  state_->notificationArea.icons.clear();
}

void Machine::StartShell() {
  const MachineLock lock(state_->mutex);
  state_->notificationArea.isUp = true;
  Announce(*state_);
}

void Machine::RestartShell() {
  StopShell();
  StartShell();
}

std::optional<TrayIcon> Machine::FindTrayIcon(UINT id) const {
  const MachineLock lock(state_->mutex);
  const auto& icons = state_->notificationArea.icons;
  const auto icon =
      std::find_if(icons.rbegin(), icons.rend(), [id](const TrayIcon& one) { return one.id == id; });
  return icon == icons.rend() ? std::nullopt : std::optional(*icon);
}

bool Machine::ClickTrayIcon(UINT id) {
  const MachineLock lock(state_->mutex);
  return Touch(*state_, id, {WM_LBUTTONDOWN, WM_LBUTTONUP});
}

bool Machine::DoubleClickTrayIcon(UINT id) {
  const MachineLock lock(state_->mutex);
  return Touch(*state_, id, {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP});
}

bool Machine::RightClickTrayIcon(UINT id) {
  const MachineLock lock(state_->mutex);
  return Touch(*state_, id, {WM_RBUTTONDOWN, WM_RBUTTONUP});
}

// ---- menus --------------------------------------------------------------------------------------------------

std::optional<std::vector<MenuItem>> Machine::OpenMenu() const {
  const MachineLock lock(state_->mutex);
  if (!state_->menus.open) return std::nullopt;
  return state_->menus.Show(state_->menus.open->menu);
}

bool Machine::ChooseMenuItem(std::u16string_view label) {
  const MachineLock lock(state_->mutex);
  return Choose(*state_, [&](const MenuItem& item) { return SameName(MenuLabel(item.text), label); });
}

bool Machine::DismissMenu() {
  const MachineLock lock(state_->mutex);
  if (!state_->menus.open) return false;
  ChooseFromMenu(*state_, 0);
  return true;
}

// ---- pointer, foreground and playback -------------------------------------------------------------------------

PlaybackVolume Machine::Playback() const {
  const MachineLock lock(state_->mutex);
  return state_->playback.volume;
}

}  // namespace pal
