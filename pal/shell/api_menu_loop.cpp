// TrackPopupMenu: shown to the person, who chooses when it pleases them, while the calling thread's messages
// go on.
#include "pal/windows/window_calls.h"

using namespace pal;

namespace {

constexpr UINT kKnownMenuFlags = TPM_RIGHTBUTTON | TPM_RIGHTALIGN | TPM_BOTTOMALIGN;

}  // namespace

BOOL WINAPI TrackPopupMenu(HMENU menu, UINT flags, int x, int y, int /*reserved*/, HWND window,
                           const RECT* /*rect*/) {
  const Call call("TrackPopupMenu");
  if (call.Fails()) return FALSE;
  if (flags & ~kKnownMenuFlags) Die("TrackPopupMenu with an unknown flag");
  State& state = call.Get();
  Thread& self = CallingThread("TrackPopupMenu");
  const Menu* shown = state.menus.Find(menu);
  if (!shown) return Refuse(ERROR_INVALID_MENU_HANDLE, FALSE);
  const Window* owner = state.desktop.Find(window);
  if (!owner) return Refuse(ERROR_INVALID_WINDOW_HANDLE, FALSE);
  if (owner->thread != &self) Die("TrackPopupMenu for a window of another thread");
  if (state.menus.open) return Refuse(ERROR_POPUP_ALREADY_ACTIVE, FALSE);
  if (state.scheduler.IsEnding()) return FALSE;
  if (std::exchange(state.menus.stale, window) == window) return FALSE;

  const auto popup = std::make_shared<OpenPopup>(OpenPopup{menu, std::nullopt});
  state.menus.open = popup;
  state.Emit(MenuShown{state.menus.Show(menu), x, y, flags});
  const std::optional<int> quit = RunNestedLoop(
      state, self, [&] { return popup->choice || !state.menus.Find(menu) || !state.desktop.Find(window); });
  state.menus.open = nullptr;
  if (quit) self.queue.PostQuit(*quit);  // the loop outside gets to see it
  if (!popup->choice) return FALSE;
  const Menus::Place chosen = state.menus.FindItem(menu, *popup->choice, MF_BYCOMMAND);
  state.Emit(MenuChosen{*popup->choice, chosen ? chosen.Item().text : std::u16string()});
  if (*popup->choice != 0) PostTo(state, window, WM_COMMAND, *popup->choice, 0);
  return TRUE;
}
