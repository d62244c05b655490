// The macro plug-in: what the library exports. 8-bit texts are in the thread's ANSI code page.
#pragma once

#include <windows.h>

extern "C" {
// Types the macro into the window that has the keyboard, and returns when it is done. One with a mistake
// beeps and does nothing. `mode` is 0.
void RunMacro(const char* macro, int mode);
// Lets the user edit the macro. The result is good until the next call; null when the user gave up.
// `customFile` is not used.
char* ComposeMacro(HWND owner, char* model, char* macro, char* customFile);
// Nothing to free.
void FreeMacroDll(void);
}
