// Hidden top-level windows that report what reaches them: the registered switch notification, copied data,
// commands and private messages.
#pragma once

#include <windows.h>

#include <string>

namespace observer {

// The observer's own window, the sender of what it sends; always there.
inline constexpr wchar_t kOwnClass[] = L"Veltra Observer";
HWND OwnWindow();

// Throws std::runtime_error when Windows refuses the window.
void OpenWatchedWindow(const std::wstring& className);
// One with a text field in it, which gets the keyboard.
void OpenTextField(const std::wstring& caption);
// All but the own window.
void CloseWatchedWindows();

}  // namespace observer
