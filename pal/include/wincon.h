// The console. There is none: what a program prints goes to the host's own standard output.
#pragma once

#include "windef.h"

UINT WINAPI GetConsoleOutputCP();  // 0
BOOL WINAPI SetConsoleOutputCP(UINT codePage);
