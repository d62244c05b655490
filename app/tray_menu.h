// The context menus of the two icons.
#pragma once

#include <windows.h>

namespace veltra {

enum class TrayMenu { kPower, kTool };

// Shows the menu at the cursor; the chosen command comes to the main window as WM_COMMAND. The tool's menu
// offers the languages, the current one checked.
void ShowTrayMenu(HWND window, TrayMenu which);

}  // namespace veltra
