// The link to the controller: one port, opened at start and again when it comes back.
#pragma once

#include <windows.h>

#include "base/text.h"

namespace veltra {

constexpr UINT kPortRetryMs = 30000;

// Opens COM<PicPortNumber> and starts its monitor. False, with a log line, when that fails; when no retry is
// due either, the tool's icon tells the person that the switches do not work, until the port is open.
bool StartPicComm();

// Lets go of what the switches hold down and closes the port. Requests that wait are kept: when the port is
// open again the first one is transmitted again, unless its answer was in the message queue already.
void StopPicComm();

[[nodiscard]] bool IsPicPortOpen();

// A COM port arrived or was removed; `portName` in upper case. Other ports than the controller's get a log
// line only.
void OnPicPortChange(const WideText& portName, bool arrived);

// The monitor thread ended because the device is gone, and no removal was announced: closes the port at once,
// as its name cannot come back before, and tries to open it again after the retry time.
void OnPicLineLost();

// Posted after the bytes of earlier openings; `opening` counts them.
void OnPicLineOpened(WPARAM opening);

// After standby: opens the port at once when it is closed or was lost without notice.
void ReopenClosedLine();

// The retry timer fired.
void OnPortRetryTimer();

}  // namespace veltra
