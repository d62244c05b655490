// The device report: what the tablet is, as an XML document for the maker's applications.
#pragma once

#include <windows.h>

#include "base/text.h"

namespace veltra {

// Made at every call. When the board's library does not answer, the report has no platform items; a
// value that the controller has not sent is empty.
WideText BuildDeviceReport(WPARAM selection);

// Builds the report and delivers it, with its terminator, before it returns.
void SendDeviceReport(HWND receiver, WPARAM selection);

}  // namespace veltra
