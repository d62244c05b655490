// The dialog of the contract tests.
#pragma once

#include <windows.h>

#include <functional>

#include "tests/pal/contract_ids.h"

namespace contract {

inline LPCDLGTEMPLATEW ControlsTemplate() {
  const HRSRC resource =
      FindResourceExW(nullptr, RT_DIALOG, MAKEINTRESOURCEW(CONTRACT_CONTROLS), LANG_NEUTRAL);
  return static_cast<LPCDLGTEMPLATEW>(LockResource(LoadResource(nullptr, resource)));
}

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

}  // namespace contract
