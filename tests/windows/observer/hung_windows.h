// Windows of a program that hangs: their threads look at no messages.
#pragma once

#include <string>

namespace observer {

// Throws std::runtime_error when Windows refuses the window.
void OpenHungWindow(const std::wstring& className);
void CloseHungWindows();

}  // namespace observer
