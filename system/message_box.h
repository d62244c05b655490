// Message boxes that may be asked for again while they stand.
#pragma once

#include <windows.h>

#include "base/text.h"

namespace veltra {

enum class BoxKind { kConfirmClose, kUpdateRuns, kBatteryDetails, kEndpointUnreached, kEndpointNotSet };

// Shows the box and waits for the person; the button, as MessageBoxW gives it. 0 at once when a box of that
// kind stands already: however often it is asked for, one stands.
int ShowMessageBox(BoxKind kind, HWND owner, const WideText& text, const WideText& caption, UINT type);

}  // namespace veltra
