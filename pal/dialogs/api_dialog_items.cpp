// A dialog's controls by their numbers, and the keyboard's way through them.
#include <algorithm>

#include "pal/windows/window_calls.h"

using namespace pal;

namespace {

bool CanBeReached(State& state, HWND handle) {
  const Window& control = *state.desktop.Find(handle);
  return (control.style & (WS_TABSTOP | WS_VISIBLE | WS_DISABLED)) == (WS_TABSTOP | WS_VISIBLE);
}

bool IsButton(const Window& window, DWORD kind) {
  return std::holds_alternative<ButtonState>(window.control) && (window.style & BS_TYPEMASK) == kind;
}

// What Enter presses: the button that has the keyboard, or else the default one, or else "OK".
HWND ButtonForEnter(HWND dialog) {
  const Call call;
  const Window* focus = call->desktop.Find(call->desktop.Focus());
  if (focus && (IsButton(*focus, BS_PUSHBUTTON) || IsButton(*focus, BS_DEFPUSHBUTTON))) return focus->handle;
  for (const HWND child : call->desktop.Children(dialog))
    if (IsButton(*call->desktop.Find(child), BS_DEFPUSHBUTTON)) return child;
  return GetDlgItem(dialog, IDOK);
}

void SendButton(HWND dialog, HWND button, int id) {
  SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(button));
}

bool IsInside(HWND dialog, HWND window) {
  const Call call;
  const std::vector<HWND> own = call->desktop.WithDescendants(dialog);
  return call->desktop.Find(dialog) && std::ranges::find(own, window) != own.end();
}

HWND FocusNow() {
  const Call call;
  return call->desktop.Focus();
}

}  // namespace

bool pal::PressDialogKey(HWND dialog, const MSG& message) {
  if (message.message != WM_KEYDOWN || !IsInside(dialog, message.hwnd)) return false;
  if (message.wParam == VK_TAB) {
    SetFocus(NextTabItem(dialog, FocusNow(), GetAsyncKeyState(VK_SHIFT) < 0));
  } else if (message.wParam == VK_ESCAPE) {
    SendButton(dialog, GetDlgItem(dialog, IDCANCEL), IDCANCEL);
  } else if (message.wParam == VK_RETURN) {
    const HWND button = ButtonForEnter(dialog);
    if (IsWindowEnabled(button)) SendButton(dialog, button, GetDlgCtrlID(button));
  } else {
    return false;
  }
  return true;
}

HWND pal::NextTabItem(HWND dialog, HWND control, bool previous) {
  const Call call;
  std::vector<HWND> all = call->desktop.Children(dialog);
  if (previous) std::ranges::reverse(all);
  const auto current = std::ranges::find(all, control);
  if (current != all.end()) std::rotate(all.begin(), std::next(current), all.end());
  const auto next = std::ranges::find_if(all, [&](HWND one) { return CanBeReached(call.Get(), one); });
  return next == all.end() ? nullptr : *next;
}

HWND WINAPI GetDlgItem(HWND dialog, int id) {
  const Call call;
  if (!call->desktop.Find(dialog)) return Refuse<HWND>(ERROR_INVALID_WINDOW_HANDLE, nullptr);
  for (const HWND child : call->desktop.Children(dialog))
    if (static_cast<int>(call->desktop.Find(child)->id) == id) return child;
  return Refuse<HWND>(ERROR_CONTROL_ID_NOT_FOUND, nullptr);
}

int WINAPI GetDlgCtrlID(HWND control) {
  return static_cast<int>(GetWindowLongPtrW(control, GWLP_ID));
}

LRESULT WINAPI SendDlgItemMessageW(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam) {
  const HWND control = GetDlgItem(dialog, id);
  return control ? SendMessageW(control, message, wParam, lParam) : 0;
}

BOOL WINAPI SetDlgItemTextW(HWND dialog, int id, LPCWSTR text) {
  return static_cast<BOOL>(SendDlgItemMessageW(dialog, id, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)));
}

UINT WINAPI GetDlgItemTextW(HWND dialog, int id, LPWSTR buffer, int size) {
  if (!buffer || size <= 0) return 0;
  buffer[0] = 0;
  return static_cast<UINT>(SendDlgItemMessageW(dialog, id, WM_GETTEXT, static_cast<WPARAM>(size),
                                               reinterpret_cast<LPARAM>(buffer)));
}

BOOL WINAPI CheckDlgButton(HWND dialog, int id, UINT check) {
  SendDlgItemMessageW(dialog, id, BM_SETCHECK, check, 0);
  return TRUE;
}

UINT WINAPI IsDlgButtonChecked(HWND dialog, int id) {
  return static_cast<UINT>(SendDlgItemMessageW(dialog, id, BM_GETCHECK, 0, 0));
}
