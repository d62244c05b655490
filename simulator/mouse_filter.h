// The mouse filter's library, portmon.dll: one export, which a 32-bit build exports as "_MouseFilter@4".
#pragma once

#include <windows.h>

#include <cstdint>

extern "C" void WINAPI MouseFilter(int32_t mode);
