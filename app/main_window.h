// The hidden main window, the tool's only event hub.
#pragma once

#include <windows.h>

namespace veltra {

constexpr const WCHAR* kMainWindowClass = TEXT("VeltraInternal");  // also its title

LRESULT CALLBACK MainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace veltra
