// The battery, and what of the tablet may have power: the room's record.
#pragma once

#include <cstdint>

#include "base/record.h"
#include "power/alarm_decision.h"
#include "power/battery_status.h"

namespace veltra {

struct PowerState {
  BatteryStatus battery;
  int32_t lowAlarmLevel = kAlarmArmed;  // capacity of the last low-battery alarm
  bool (*isUpdateRunning)() = nullptr;  // the controller is without its firmware: no power-off now

  bool EnableFlightMode = false;
  bool EnableWLAN = true;
  bool EnableBluetooth = true;
  bool EnableMobilePhone = true;
  bool DisableUSBBack = false;  // in standby
  bool DisableUSBBottom = false;
};

inline PowerState& Power() {
  return RecordOf<PowerState>();
}

}  // namespace veltra
