// Dialogs made from templates: modal ones with their own message loop, and modeless ones.
#include <algorithm>

#include "pal/dialogs/dialog_template.h"
#include "pal/windows/window_calls.h"

using namespace pal;

namespace {

DLGPROC ProcedureOf(HWND dialog) {
  return reinterpret_cast<DLGPROC>(GetWindowLongPtrW(dialog, DWLP_DLGPROC));
}

void Centre(HWND dialog) {
  const Call call;
  const RECT& desktop = call->desktop.Find(call->desktop.DesktopWindow())->rect;
  RECT& own = call->desktop.Find(dialog)->rect;
  const SIZE size = {own.right - own.left, own.bottom - own.top};
  const POINT place = {(desktop.right - size.cx) / 2, (desktop.bottom - size.cy) / 2};
  own = {place.x, place.y, place.x + size.cx, place.y + size.cy};
}

DialogTemplate ReadTemplate(LPCDLGTEMPLATEW dialog) {
  if (!dialog) Die("a dialog without a template");
  const Call call;
  return ReadDialogTemplate(call->resources.At(dialog));
}

// The window with its controls, not visible yet.
HWND CreateDialogWindow(HINSTANCE instance, const DialogTemplate& made, HWND owner, DLGPROC procedure) {
  const RECT& rect = made.rect;
  const HWND dialog = CreateWindowExW(
      made.exStyle, TEXT("#32770"), made.caption.c_str(), made.style & ~DWORD{WS_VISIBLE}, rect.left,
      rect.top, rect.right - rect.left, rect.bottom - rect.top, owner, nullptr, instance, nullptr);
  if (!dialog) return nullptr;
  SetWindowLongPtrW(dialog, DWLP_DLGPROC, reinterpret_cast<LONG_PTR>(procedure));
  for (const TemplateControl& control : made.controls) {
    const RECT& place = control.rect;
    const HWND window =
        CreateWindowExW(control.exStyle, control.windowClass.c_str(), control.text.c_str(), control.style,
                        place.left, place.top, place.right - place.left, place.bottom - place.top, dialog,
                        reinterpret_cast<HMENU>(static_cast<ULONG_PTR>(control.id)), instance, nullptr);
    if (!window) Die("a dialog control of an unknown class");
  }
  if (made.style & DS_CENTER) Centre(dialog);
  return dialog;
}

// Null when the procedure destroyed it.
HWND Initialise(HWND dialog, LPARAM parameter) {
  const HWND first = NextTabItem(dialog, nullptr, false);
  const LRESULT wantsFocus = SendMessageW(dialog, WM_INITDIALOG, reinterpret_cast<WPARAM>(first), parameter);
  if (!IsWindow(dialog)) return nullptr;
  if (wantsFocus) SetFocus(NextTabItem(dialog, nullptr, false));
  return dialog;
}

// Whether the result of the dialog's procedure is that of the message.
bool ReturnsItself(UINT message) {
  constexpr UINT kFirstColour = 0x0132, kLastColour = 0x0138, kCompareItem = 0x0039;
  return message == WM_INITDIALOG || message == kCompareItem ||
         (message >= kFirstColour && message <= kLastColour);
}

std::shared_ptr<ModalDialog> FindModal(State& state, HWND window) {
  const auto& all = state.dialogs.modal;
  const auto found = std::ranges::find_if(all, [&](const auto& one) { return one->window == window; });
  return found == all.end() ? nullptr : *found;
}

// The loop of a modal dialog. Empty: its window was destroyed.
std::optional<INT_PTR> Run(const std::shared_ptr<ModalDialog>& dialog) {
  const Call call;
  State& state = call.Get();
  Thread& self = CallingThread("DialogBoxIndirectParamW");
  const auto isOver = [&] { return dialog->hasEnded || !state.desktop.Find(dialog->window); };
  const auto dispatch = [&](const MSG& message) {
    const MachineMutex::Open open(state.mutex);
    if (!PressDialogKey(dialog->window, message)) DispatchMessageW(&message);
  };
  const std::optional<int> quit = RunNestedLoop(state, self, isOver, dispatch);
  if (quit) self.queue.PostQuit(*quit);
  std::erase(state.dialogs.modal, dialog);
  if (!state.desktop.Find(dialog->window)) return std::nullopt;
  return dialog->result;
}

}  // namespace

HWND WINAPI CreateDialogIndirectParamW(HINSTANCE instance, LPCDLGTEMPLATEW dialog, HWND owner,
                                       DLGPROC procedure, LPARAM parameter) {
  {
    const Call call("CreateDialogIndirectParamW");
    if (call.Fails()) return nullptr;
  }
  const DialogTemplate made = ReadTemplate(dialog);
  const HWND window = CreateDialogWindow(instance, made, owner, procedure);
  if (!window || !Initialise(window, parameter)) return nullptr;
  if (made.style & WS_VISIBLE) ShowWindow(window, SW_SHOW);
  return window;
}

INT_PTR WINAPI DialogBoxIndirectParamW(HINSTANCE instance, LPCDLGTEMPLATEW dialog, HWND owner,
                                       DLGPROC procedure, LPARAM parameter) {
  constexpr INT_PTR kFailed = -1;
  {
    const Call call("DialogBoxIndirectParamW");
    if (call.Fails()) return kFailed;
  }
  if (owner && !IsWindow(owner)) return Refuse<INT_PTR>(ERROR_INVALID_WINDOW_HANDLE, 0);
  const auto modal = std::make_shared<ModalDialog>();
  if (owner && IsWindowEnabled(owner)) {
    modal->disabledOwner = owner;
    EnableWindow(owner, FALSE);
  }
  modal->window = CreateDialogWindow(instance, ReadTemplate(dialog), owner, procedure);
  if (!modal->window) {
    if (modal->disabledOwner) EnableWindow(modal->disabledOwner, TRUE);
    return kFailed;
  }
  {
    const Call call;
    call->dialogs.modal.push_back(modal);
  }
  if (Initialise(modal->window, parameter) && !modal->hasEnded) ShowWindow(modal->window, SW_SHOW);
  const std::optional<INT_PTR> result = Run(modal);
  if (modal->disabledOwner && !modal->hasEnded) EnableWindow(modal->disabledOwner, TRUE);
  if (!result) return 0;
  DestroyWindow(modal->window);
  return *result;
}

BOOL WINAPI EndDialog(HWND dialog, INT_PTR result) {
  HWND owner = nullptr;
  {
    const Call call("EndDialog");
    if (call.Fails()) return FALSE;
    if (!call->desktop.Find(dialog)) return Refuse(ERROR_INVALID_WINDOW_HANDLE, FALSE);
    const std::shared_ptr<ModalDialog> modal = FindModal(call.Get(), dialog);
    if (!modal) Die("EndDialog of a modeless dialog");
    modal->hasEnded = true;
    modal->result = result;
    owner = modal->disabledOwner;
  }
  if (owner) EnableWindow(owner, TRUE);
  ShowWindow(dialog, SW_HIDE);
  return TRUE;
}

LRESULT CALLBACK pal::DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  SetWindowLongPtrW(dialog, DWLP_MSGRESULT, 0);
  const DLGPROC procedure = ProcedureOf(dialog);
  const INT_PTR result = procedure ? procedure(dialog, message, wParam, lParam) : FALSE;
  if (message == WM_INITDIALOG || (result && ReturnsItself(message))) return result;
  if (result) return GetWindowLongPtrW(dialog, DWLP_MSGRESULT);
  if (message != WM_CLOSE) return DefWindowProcW(dialog, message, wParam, lParam);
  PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED),
               reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDCANCEL)));
  return 0;
}
