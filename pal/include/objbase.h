// COM: what every thread that uses it calls at its beginning and end.
#pragma once

#include <windows.h>

HRESULT WINAPI CoInitialize(LPVOID reserved);
void WINAPI CoUninitialize();
