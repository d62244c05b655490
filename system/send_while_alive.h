// Messages to other programs' windows that are waited for.
#pragma once

#include <windows.h>

namespace veltra {

// Sends the message and waits until it has been handled, as long as the receiver lives; 5 s at most when it
// hangs. One that waits for the tool itself looks hung to Windows and handles the message all the same. What
// others send to the tool is handled meanwhile. False when it was not handled.
bool SendWhileAlive(HWND receiver, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace veltra
