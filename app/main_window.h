// The hidden main window, the tool's only event hub.
#pragma once

#include <windows.h>

namespace veltra {

constexpr const WCHAR* kMainWindowClass = TEXT("VeltraInternal");  // also its title

// Menu commands (WM_COMMAND).
constexpr WORD kOpenPowerMeterCommand = 127;
constexpr WORD kCloseCommand = 128;
constexpr WORD kOpenOptionsCommand = 40211;
constexpr WORD kFirstLanguageCommand = 40212;
constexpr WORD kLastLanguageCommand = 40230;

LRESULT CALLBACK MainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace veltra
