// TrackPopupMenu: shown to the person, who chooses when it pleases them, while the calling thread's messages
// go on.
#include <algorithm>

#include "pal/window_calls.h"

using namespace pal;

namespace {

constexpr UINT kKnownFlags =
    TPM_RIGHTBUTTON | TPM_CENTERALIGN | TPM_RIGHTALIGN | TPM_BOTTOMALIGN;  // and TPM_LEFTALIGN, which is 0
constexpr size_t kNothing = static_cast<size_t>(-1);

bool CanBeSelected(const Menu::Item& item) {
  return (item.flags & MF_SEPARATOR) == 0;
}
bool CanBeChosen(const Menu::Item& item) {
  return (item.flags & (MF_SEPARATOR | MF_GRAYED | MF_DISABLED)) == 0 && !item.popup;
}

// The next item in that direction, round the end.
size_t NextItem(const Menu& menu, size_t from, bool down) {
  const size_t count = menu.items.size();
  size_t at = from == kNothing && !down ? 0 : from;
  for (size_t n = 0; n < count; ++n) {
    at = down ? (at + 1) % count : (at + count - 1) % count;
    if (CanBeSelected(menu.items[at])) return at;
  }
  return kNothing;
}

void Enter(State& state, OpenPopup& popup, const Menu& menu) {
  if (popup.selected.back() >= menu.items.size()) return;
  const Menu::Item& item = menu.items[popup.selected.back()];
  if (item.popup) {
    popup.path.push_back(item.popup);
    popup.selected.push_back(NextItem(*state.menus.Find(item.popup), kNothing, true));
  } else if (CanBeChosen(item)) {
    ChooseFromMenu(state, item.id);
  }
}

void Leave(State& state, OpenPopup& popup) {
  popup.path.pop_back();
  popup.selected.pop_back();
  if (popup.path.empty()) ChooseFromMenu(state, 0);
}

void HandleKey(State& state, OpenPopup& popup, WPARAM key) {
  const Menu* menu = state.menus.Find(popup.path.back());
  if (!menu) return;
  switch (key) {
    case VK_DOWN:
    case VK_UP:
      popup.selected.back() = NextItem(*menu, popup.selected.back(), key == VK_DOWN);
      return;
    case VK_RETURN:
      return Enter(state, popup, *menu);
    case VK_ESCAPE:
      return Leave(state, popup);
    default:
      return;
  }
}

}  // namespace

namespace pal {

void ChooseFromMenu(State& state, UINT command) {
  if (!state.menus.open) Die("no menu is open");
  state.menus.open->choice = command;
  state.scheduler.Notify();
}

}  // namespace pal

BOOL WINAPI TrackPopupMenu(HMENU menu, UINT flags, int x, int y, int /*reserved*/, HWND window,
                           const RECT* /*rect*/) {
  const Call call("TrackPopupMenu");
  if (call.Fails()) return FALSE;
  if (flags & ~kKnownFlags) Die("TrackPopupMenu with an unknown flag");
  State& state = call.Get();
  Thread& self = CallingThread("TrackPopupMenu");
  const Menu* shown = state.menus.Find(menu);
  if (!shown) return Refuse(ERROR_INVALID_MENU_HANDLE, FALSE);
  const Window* owner = state.desktop.Find(window);
  if (!owner) return Refuse(ERROR_INVALID_WINDOW_HANDLE, FALSE);
  if (owner->thread != &self) Die("TrackPopupMenu for a window of another thread");
  if (state.menus.open) return Refuse(ERROR_POPUP_ALREADY_ACTIVE, FALSE);
  if (state.scheduler.IsEnding()) return FALSE;

  const auto popup = std::make_shared<OpenPopup>(OpenPopup{menu, std::nullopt, {kNothing}, {menu}});
  state.menus.open = popup;
  state.Emit(MenuShown{state.menus.Show(menu), x, y, flags});
  const std::optional<int> quit = RunNestedLoop(
      state, self, [&] { return popup->choice || !state.menus.Find(menu) || !state.desktop.Find(window); },
      [&](const MSG& message) {
        if (message.message == WM_KEYDOWN)
          HandleKey(state, *popup, message.wParam);
        else if (message.message != WM_KEYUP)
          Dispatch(state, message);
      });
  state.menus.open = nullptr;
  if (quit) self.queue.PostQuit(*quit);  // the loop outside gets to see it
  if (!popup->choice) return FALSE;
  const Menus::Place chosen = state.menus.FindItem(menu, *popup->choice, MF_BYCOMMAND);
  state.Emit(MenuChosen{*popup->choice, chosen ? chosen.Item().text : std::u16string()});
  if (*popup->choice != 0) PostTo(state, window, WM_COMMAND, *popup->choice, 0);
  return TRUE;
}
