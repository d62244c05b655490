// What Windows and other programs send while the tool is busy.
#pragma once

namespace veltra {

// Handles what was sent meanwhile. Throws StateEnded when the session has ended by that, or the main window
// is closed: whoever starts the tool or waits for a device stops there.
void ServeSentMessages();

}  // namespace veltra
