// Which Windows this is, and which version of the program.
#pragma once

#include <windows.h>

#include "base/text.h"

namespace veltra {

[[nodiscard]] bool IsWindowsVersionAtLeast(DWORD major, DWORD minor);
[[nodiscard]] bool IsWindows7OrLater();

// The "FileVersion" text of the program's own version resource; empty when it has none.
WideText GetOwnFileVersion();

}  // namespace veltra
