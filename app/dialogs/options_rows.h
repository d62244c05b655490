// The rows of the options dialog for the side buttons: what a press does, and with what.
#pragma once

#include <windows.h>

#include <cstddef>

namespace veltra {

constexpr int kOptionsRows = 4;  // one for each record of the profile, in its order

// Fills the rows from the profile file.
void InitButtonRows(HWND dialog);

// The user chose another action: shows its kind of parameter, empty.
void OnActionTypeChange(HWND dialog, int row);

// The "..." of a row: lets the user choose a file, or put together a macro.
void OnRowBrowse(HWND dialog, int row);

// Stores the rows in the records and the profile. A list without a selection leaves its part as it is.
void CollectButtonRows(HWND dialog);

}  // namespace veltra
