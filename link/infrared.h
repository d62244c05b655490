// Infrared codes: other programs ask the controller to record and send them through the tool.
#pragma once

#include <windows.h>

#include "base/text.h"

namespace veltra {

// Queues another program's request; its reply goes back to `asker` as copied data. A cancel drops every
// queued request first, the tool's own included, but for those of a firmware update.
void ForwardInfraredRequest(HWND asker, Bytes request);
void ForwardInfraredCancel(HWND asker, Bytes request);

// Keeps the recording that the controller sent for the tool's own request, tells the user, and writes it to
// "ir.txt" in the data folder. A file that cannot be written leaves the recording in memory.
void StoreInfraredRecording(Bytes code);

}  // namespace veltra
