// What windows show: visible or not, enabled or not, where, with which text, and who has the keyboard.
#include <algorithm>

#include "pal/windows/window_calls.h"

using namespace pal;

namespace {

bool IsInside(State& state, HWND outer, HWND inner) {
  const std::vector<HWND> all = state.desktop.WithDescendants(outer);
  return inner && std::ranges::find(all, inner) != all.end();
}

// A dialog is seen to come and go.
void EmitShown(State& state, const Window& window, bool isShown) {
  if (window.procedure != DialogProcedure || window.parent) return;
  if (isShown)
    state.Emit(DialogShown{window.title, window.rect.left, window.rect.top,
                           window.rect.right - window.rect.left, window.rect.bottom - window.rect.top,
                           (window.exStyle & WS_EX_TOPMOST) != 0, state.desktop.ClassOf(window.owner)});
  else
    state.Emit(DialogHidden{window.title});
}

}  // namespace

BOOL WINAPI ShowWindow(HWND window, int command) {
  if (command != SW_HIDE && command != SW_SHOW) Die("ShowWindow with an unknown command");
  const bool show = command == SW_SHOW;
  HWND focusTo = nullptr;
  {
    const Call call;
    Window* found = FindOrRefuse(call.Get(), window);
    if (!found) return FALSE;
    const bool wasShown = (found->style & WS_VISIBLE) != 0;
    if (wasShown == show) return wasShown ? TRUE : FALSE;
    found->style ^= WS_VISIBLE;
    EmitShown(call.Get(), *found, show);
    for (const HWND one : call->desktop.WithDescendants(window))
      if (call->desktop.IsShown(one))
        found->thread->queue.Invalidate(one);
      else
        found->thread->queue.Validate(one);
    if (show || !IsInside(call.Get(), window, call->desktop.Focus())) return show ? FALSE : TRUE;
    focusTo = found->parent;
  }
  SetFocus(focusTo);
  return TRUE;
}

BOOL WINAPI IsWindowVisible(HWND window) {
  const Call call;
  return call->desktop.IsShown(window) ? TRUE : FALSE;
}

// Returns whether it was disabled before.
BOOL WINAPI EnableWindow(HWND window, BOOL enable) {
  bool losesFocus = false;
  {
    const Call call;
    Window* found = FindOrRefuse(call.Get(), window);
    if (!found) return FALSE;
    const bool wasDisabled = (found->style & WS_DISABLED) != 0;
    if (wasDisabled != (enable != FALSE)) return wasDisabled ? TRUE : FALSE;
    found->style ^= WS_DISABLED;
    losesFocus = !enable && IsInside(call.Get(), window, call->desktop.Focus());
  }
  if (losesFocus) SetFocus(nullptr);  // who is disabled cannot have the keyboard
  SendMessageW(window, WM_ENABLE, enable ? TRUE : FALSE, 0);
  return enable ? TRUE : FALSE;
}

BOOL WINAPI IsWindowEnabled(HWND window) {
  const Call call;
  const Window* found = FindOrRefuse(call.Get(), window);
  return found && !(found->style & WS_DISABLED) ? TRUE : FALSE;
}

HWND WINAPI SetFocus(HWND window) {
  HWND before = nullptr;
  {
    const Call call("SetFocus");
    if (call.Fails()) return nullptr;
    const Window* found = window ? FindOrRefuse(call.Get(), window) : nullptr;
    if (window && (!found || (found->style & WS_DISABLED))) return nullptr;
    before = call->desktop.Focus();
    if (before == window) return before;
    call->desktop.SetFocus(window);
  }
  if (before) SendMessageW(before, WM_KILLFOCUS, reinterpret_cast<WPARAM>(window), 0);
  if (window) SendMessageW(window, WM_SETFOCUS, reinterpret_cast<WPARAM>(before), 0);
  return before;
}

BOOL WINAPI SetWindowPos(HWND window, HWND insertAfter, int x, int y, int width, int height, UINT flags) {
  constexpr UINT kKnown = SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE;
  const Call call("SetWindowPos");
  if (call.Fails()) return FALSE;
  if (flags & ~kKnown) Die("SetWindowPos with an unknown flag");
  const bool reorders = !(flags & SWP_NOZORDER);
  if (reorders && insertAfter != HWND_TOP && insertAfter != HWND_TOPMOST) Die("SetWindowPos behind a window");
  Window* found = FindOrRefuse(call.Get(), window);
  if (!found) return FALSE;
  RECT& rect = found->rect;
  const SIZE size = {rect.right - rect.left, rect.bottom - rect.top};
  if (!(flags & SWP_NOMOVE)) rect = {x, y, x + size.cx, y + size.cy};
  if (!(flags & SWP_NOSIZE)) rect = {rect.left, rect.top, rect.left + width, rect.top + height};
  if (reorders && insertAfter == HWND_TOPMOST) found->exStyle |= WS_EX_TOPMOST;
  call->Emit(WindowPlaced{found->title, x, y, width, height, reorders && insertAfter == HWND_TOPMOST, flags});
  return TRUE;
}

BOOL WINAPI SetWindowTextW(HWND window, LPCWSTR text) {
  return static_cast<BOOL>(SendMessageW(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)));
}
