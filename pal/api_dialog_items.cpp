// A dialog's controls by their numbers, and the keyboard's way through them.
#include <algorithm>

#include "pal/window_calls.h"

using namespace pal;

namespace {

bool CanBeReached(State& state, HWND handle) {
  const Window& control = *state.desktop.Find(handle);
  return (control.style & (WS_TABSTOP | WS_VISIBLE | WS_DISABLED)) == (WS_TABSTOP | WS_VISIBLE);
}

bool IsPushButton(HWND window) {
  const Call call;
  const Window* found = call->desktop.Find(window);
  if (!found || !std::holds_alternative<ButtonState>(found->control)) return false;
  const DWORD kind = found->style & BS_TYPEMASK;
  return kind == BS_PUSHBUTTON || kind == BS_DEFPUSHBUTTON;
}

void SendButton(HWND dialog, WORD id) {
  SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
               reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}

// Enter presses the button that has the keyboard, or else the default one, or else "OK".
void PressEnter(HWND dialog) {
  if (IsPushButton(GetFocus())) return SendButton(dialog, static_cast<WORD>(GetDlgCtrlID(GetFocus())));
  const LRESULT defaultId = SendMessageW(dialog, DM_GETDEFID, 0, 0);
  if (HIWORD(defaultId) != DC_HASDEFID) return SendButton(dialog, IDOK);
  if (IsWindowEnabled(GetDlgItem(dialog, LOWORD(defaultId)))) SendButton(dialog, LOWORD(defaultId));
}

bool PressDialogKey(HWND dialog, WPARAM key) {
  if (key == VK_TAB) {
    const bool previous = GetAsyncKeyState(VK_SHIFT) < 0;
    SetFocus(GetNextDlgTabItem(dialog, GetFocus(), previous ? TRUE : FALSE));
  } else if (key == VK_ESCAPE) {
    SendButton(dialog, IDCANCEL);
  } else if (key == VK_RETURN) {
    PressEnter(dialog);
  } else {
    return false;
  }
  return true;
}

}  // namespace

BOOL WINAPI IsDialogMessageW(HWND dialog, LPMSG message) {
  {
    const Call call;
    const std::vector<HWND> own = call->desktop.WithDescendants(dialog);
    if (!call->desktop.Find(dialog) || std::ranges::find(own, message->hwnd) == own.end()) return FALSE;
  }
  if (message->message == WM_KEYDOWN && PressDialogKey(dialog, message->wParam)) return TRUE;
  DispatchMessageW(message);
  return TRUE;
}

HWND WINAPI GetNextDlgTabItem(HWND dialog, HWND control, BOOL previous) {
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
