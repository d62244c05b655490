// The tool's dialogs and their controls by number.
#pragma once

#include <windows.h>

#include <optional>
#include <span>

#include "base/text.h"

namespace veltra {

// Runs the modal dialog of that name, in the current language, over the main window. Returns its result, -1
// when it could not be shown.
INT_PTR RunDialog(const WCHAR* name, DLGPROC procedure, LPARAM parameter);

struct DialogRow {
  UINT message;
  void (*handle)(HWND dialog, WPARAM wParam, LPARAM lParam);
};
// Runs the row of the message. Returns whether there is one, as Windows asks of a dialog procedure.
INT_PTR HandleDialogMessage(const WCHAR* who, std::span<const DialogRow> rows, HWND dialog, UINT message,
                            WPARAM wParam, LPARAM lParam);

struct ItemLabel {
  int id;
  UINT text;  // number of a string
};
// Sets the texts of controls from the string table.
void SetLabels(HWND dialog, std::span<const ItemLabel> labels);

void SetItemText(HWND dialog, int id, const WideText& text);
// At most `longest` characters.
WideText GetItemText(HWND dialog, int id, int longest);

void CheckItem(HWND dialog, int id, bool checked);
bool IsItemChecked(HWND dialog, int id);
void EnableItem(HWND dialog, int id, bool enable);
void ShowItem(HWND dialog, int id, bool show);
int GetSliderPosition(HWND dialog, int id);

// Drop-down lists, each entry with a value.
void AddListEntry(HWND dialog, int id, const WideText& text, int32_t value);
// The first entry of that value; none when there is none. Returns whether there is.
bool SelectListValue(HWND dialog, int id, int32_t value);
// Empty without a selection.
std::optional<int32_t> SelectedListValue(HWND dialog, int id);

}  // namespace veltra
