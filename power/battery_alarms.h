// Watching the battery: alarms, the forced power-off, the tray icon.
#pragma once

#include <windows.h>

namespace veltra {

constexpr UINT kBatteryCheckMs = 3000;

void StartBatteryTimer();
// Stops the timer and takes one timer message of the main window out of the queue.
void StopBatteryTimer();

// The battery timer fired.
void CheckBatteryAlarms();

// Picture and tooltip of the power icon.
void UpdateTrayBatteryIcon();

}  // namespace veltra
