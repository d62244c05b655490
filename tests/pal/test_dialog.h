// The dialog of the contract tests, driven from inside: once it is up it runs what a test has to say.
#pragma once

#include <windows.h>

#include <functional>
#include <vector>

#include "tests/pal/contract_ids.h"

namespace contract {

inline LPCDLGTEMPLATEW ControlsTemplate() {
  const HRSRC resource =
      FindResourceExW(nullptr, RT_DIALOG, MAKEINTRESOURCEW(CONTRACT_CONTROLS), LANG_NEUTRAL);
  return static_cast<LPCDLGTEMPLATEW>(LockResource(LoadResource(nullptr, resource)));
}

struct DialogMessage {
  UINT message;
  WPARAM wParam;
  LPARAM lParam;
};

class TestDialog {
 public:
  using Handler = std::function<INT_PTR(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)>;

  explicit TestDialog(Handler handler) : handler_(std::move(handler)) {}

  // Shows it until something ends it, and returns the result.
  INT_PTR Run(HWND owner = nullptr) {
    return DialogBoxIndirectParamW(GetModuleHandleW(nullptr), ControlsTemplate(), owner, Procedure,
                                   reinterpret_cast<LPARAM>(this));
  }
  HWND Create(HWND owner = nullptr) {
    return CreateDialogIndirectParamW(GetModuleHandleW(nullptr), ControlsTemplate(), owner, Procedure,
                                      reinterpret_cast<LPARAM>(this));
  }

 private:
  static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) SetWindowLongPtrW(dialog, DWLP_USER, lParam);
    const auto* self = reinterpret_cast<const TestDialog*>(GetWindowLongPtrW(dialog, DWLP_USER));
    return self ? self->handler_(dialog, message, wParam, lParam) : FALSE;
  }

  Handler handler_;
};

// Runs `steps` in an open dialog, and keeps what the controls told it meanwhile: WM_COMMAND, WM_HSCROLL.
class OpenDialogRun {
 public:
  explicit OpenDialogRun(const std::function<void(OpenDialogRun&)>& steps) {
    TestDialog shown([&](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> INT_PTR {
      if (message == WM_INITDIALOG) {
        dialog = window;
        PostMessageW(window, WM_APP, 0, 0);
        return TRUE;
      }
      if (message == WM_COMMAND || message == WM_HSCROLL) told_.push_back({message, wParam, lParam});
      if (message == WM_APP) {
        TakeTold();
        steps(*this);
        EndDialog(window, 1);
      }
      return FALSE;
    });
    shown.Run();
  }

  [[nodiscard]] HWND Item(int id) const { return GetDlgItem(dialog, id); }
  LRESULT Send(int id, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
    return SendDlgItemMessageW(dialog, id, message, wParam, lParam);
  }
  void Click(int id) const {
    Send(id, WM_LBUTTONDOWN);
    Send(id, WM_LBUTTONUP);
  }
  void Key(int id, WPARAM key) const {
    Send(id, WM_KEYDOWN, key);
    Send(id, WM_KEYUP, key);
  }
  // What came since the last call.
  std::vector<DialogMessage> TakeTold() { return std::exchange(told_, {}); }
  // The codes of WM_COMMAND from one control since the last call, leaving out those of the focus.
  std::vector<int> TakeCodes(int id, const std::vector<int>& wanted) {
    std::vector<int> codes;
    for (const DialogMessage& m : TakeTold())
      for (const int code : wanted)
        if (m.message == WM_COMMAND && LOWORD(m.wParam) == id && HIWORD(m.wParam) == code &&
            reinterpret_cast<HWND>(m.lParam) == Item(id))
          codes.push_back(code);
    return codes;
  }
  [[nodiscard]] std::basic_string<WCHAR> Text(int id) const {
    WCHAR buffer[256];
    return {buffer, GetDlgItemTextW(dialog, id, buffer, 256)};
  }

  HWND dialog = nullptr;

 private:
  std::vector<DialogMessage> told_;
};

}  // namespace contract
