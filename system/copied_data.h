// Answers to other programs as copied data.
#pragma once

#include <windows.h>

#include "base/text.h"

namespace veltra {

// Sends copied data from the main window to a window of another program and waits until it has been handled.
// False when it was not: the window is gone, is the main window itself, hangs (Windows calls a window hung
// that has not looked at its messages for five seconds), or answers every answer with a new request.
bool SendCopiedData(HWND receiver, ULONG_PTR tag, Bytes data);

}  // namespace veltra
