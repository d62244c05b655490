// The drop-down lists of the options dialog for the two switches and the middle button: each entry has the
// value of its setting.
#pragma once

#include <windows.h>

namespace veltra {

// Fills the lists and selects what the settings say; a switch command that is not in its list shows no
// selection.
void InitSwitchLists(HWND dialog);

// Tells the controller when switch 1 starts the tablet, and stores what is selected. A list without a
// selection leaves its setting as it is. What a switch holds down is released when its command changes.
void StoreSwitchLists(HWND dialog);

}  // namespace veltra
