// The battery and the power source as the controller reports them: a record.
#pragma once

#include <cstdint>
#include <map>

#include "base/text.h"

namespace veltra {

// The numbers are also what other programs get.
enum class PowerSource : int32_t {
  kUnknown = -1,
  kBattery = 1,
  kAcCharging = 2,
  kAcFull = 3,
  kAcNoBattery = 4,
};

// How full the pictures show it.
enum class BatteryBand { kHigh, kMedium, kLow, kEmpty };
BatteryBand BandOf(int32_t capacity);  // percent

struct BatteryStatus {
  int32_t capacity = 50;                            // percent, 0 to 100
  PowerSource powerSource = PowerSource::kUnknown;  // as last worked out
  std::map<int, WideText> details;                  // battery details by index, 1 to 13
  bool BattLow = true;                              // low-battery alarm enabled
  bool BattCrit = true;                             // critical alarm and power-off enabled
  int32_t BattLowPercentage = 10;                   // alarm levels, percent
  int32_t BattCritPercentage = 5;
  bool batteryPresent = true;
  bool adapterPresent = false;
  bool batteryCharging = false;  // stored only; no decision reads it

  // Stores a changed capacity and writes a detail line; an unchanged one does nothing.
  void SetCapacity(int32_t percent);
  // Works out, stores and returns the power source.
  PowerSource GetPowerSource();
  // On battery, at or below the critical level; whether or not that alarm is enabled.
  bool IsCritical();
  // "battery at 5 %, critical at 5 %"
  [[nodiscard]] WideText Describe() const;
  // Keeps the first 255 bytes of the reply, up to its first zero byte.
  void SetDetail(int index, Bytes reply);
  // Empty when the controller has not answered.
  [[nodiscard]] WideText GetDetail(int index) const;
};

}  // namespace veltra
