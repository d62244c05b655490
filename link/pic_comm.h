// The link to the controller: one port, opened at start and again when it comes back.
#pragma once

#include <windows.h>

#include "base/text.h"

namespace veltra {

constexpr UINT kPortRetryMs = 30000;

// Opens COM<PicPortNumber> and starts its monitor. False, with a log line, when the port cannot be opened.
bool StartPicComm();

// Lets go of what the switches hold down, drops the requests that wait (their replies cannot come any more)
// and closes the port.
void StopPicComm();

[[nodiscard]] bool IsPicPortOpen();

// A COM port arrived or was removed; `portName` in upper case. Other ports than the controller's get a log
// line only.
void OnPicPortChange(const WideText& portName, bool arrived);

// The monitor thread ended because the device is gone, and no removal was announced: lets go of what the
// switches hold down and tries to open the port again after the retry time.
void OnPicLineLost();

// After standby: opens the port again at once when it was lost without notice.
void ReopenLostLine();

// The retry timer fired.
void OnPortRetryTimer();

}  // namespace veltra
