// Ending Windows.
#pragma once

#include <windows.h>

#include "base/text.h"

namespace veltra {

// Tells Windows to power off; true when it accepts that. `flags` and `reason` are those of ExitWindowsEx,
// `why` stands in the log, and after it an error line when Windows refuses.
bool PowerOffSystem(UINT flags, DWORD reason, const WideText& why);

}  // namespace veltra
