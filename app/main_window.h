// The hidden main window, the tool's only event hub.
#pragma once

#include <windows.h>

namespace veltra {

constexpr const WCHAR* kMainWindowClass = TEXT("VeltraInternal");  // also its title

// Asks Windows for what it would keep from the window: messages of programs with lower rights than the
// tool's, suspend and resume, the lock screen.
void OpenToOthers(HWND window);

LRESULT CALLBACK MainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace veltra
