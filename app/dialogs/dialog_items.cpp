#include "app/dialogs/dialog_items.h"

#include <windows.h>

#include <commctrl.h>

#include "app/app_state.h"
#include "base/called_by_windows.h"
#include "system/language.h"

namespace veltra {

INT_PTR RunDialog(const WCHAR* name, DLGPROC procedure, LPARAM parameter) {
  constexpr INT_PTR kNotShown = -1;
  const Bytes resource = FindLocalResource(RT_DIALOG, name);
  if (resource.empty()) return kNotShown;
  return DialogBoxIndirectParamW(System().hInstance, reinterpret_cast<LPCDLGTEMPLATEW>(resource.data()),
                                 MainWindow(), procedure, parameter);
}

INT_PTR HandleDialogMessage(const WCHAR* who, std::span<const DialogRow> rows, HWND dialog, UINT message,
                            WPARAM wParam, LPARAM lParam) {
  if (!HasAppState()) return FALSE;  // the session has ended
  for (const DialogRow& row : rows)
    if (row.message == message)
      return CalledByWindows(who, message, INT_PTR{FALSE}, [&] {
        row.handle(dialog, wParam, lParam);
        return INT_PTR{TRUE};
      });
  return FALSE;
}

void SetLabels(HWND dialog, std::span<const ItemLabel> labels) {
  for (const ItemLabel& label : labels) SetItemText(dialog, label.id, LoadResString(label.text));
}

void SetItemText(HWND dialog, int id, const WideText& text) {
  SetDlgItemTextW(dialog, id, text.c_str());
}

WideText GetItemText(HWND dialog, int id, int longest) {
  WideText text(static_cast<size_t>(longest) + 1, 0);
  text.resize(GetDlgItemTextW(dialog, id, text.data(), longest + 1));
  return text;
}

void CheckItem(HWND dialog, int id, bool checked) {
  CheckDlgButton(dialog, id, checked ? BST_CHECKED : BST_UNCHECKED);
}

bool IsItemChecked(HWND dialog, int id) {
  return IsDlgButtonChecked(dialog, id) == BST_CHECKED;
}

void EnableItem(HWND dialog, int id, bool enable) {
  EnableWindow(GetDlgItem(dialog, id), enable ? TRUE : FALSE);
}

void ShowItem(HWND dialog, int id, bool show) {
  ShowWindow(GetDlgItem(dialog, id), show ? SW_SHOW : SW_HIDE);
}

int GetSliderPosition(HWND dialog, int id) {
  return static_cast<int>(SendDlgItemMessageW(dialog, id, TBM_GETPOS, 0, 0));
}

void AddListEntry(HWND dialog, int id, const WideText& text, int32_t value) {
  const LRESULT index =
      SendDlgItemMessageW(dialog, id, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
  if (index >= 0) SendDlgItemMessageW(dialog, id, CB_SETITEMDATA, static_cast<WPARAM>(index), value);
}

bool SelectListValue(HWND dialog, int id, int32_t value) {
  const LRESULT count = SendDlgItemMessageW(dialog, id, CB_GETCOUNT, 0, 0);
  for (LRESULT index = 0; index < count; ++index) {
    const auto entry = static_cast<WPARAM>(index);
    if (static_cast<int32_t>(SendDlgItemMessageW(dialog, id, CB_GETITEMDATA, entry, 0)) != value) continue;
    SendDlgItemMessageW(dialog, id, CB_SETCURSEL, entry, 0);
    return true;
  }
  return false;
}

std::optional<int32_t> SelectedListValue(HWND dialog, int id) {
  const LRESULT index = SendDlgItemMessageW(dialog, id, CB_GETCURSEL, 0, 0);
  if (index == CB_ERR) return std::nullopt;
  return static_cast<int32_t>(SendDlgItemMessageW(dialog, id, CB_GETITEMDATA, static_cast<WPARAM>(index), 0));
}

}  // namespace veltra
