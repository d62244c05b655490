#include "power/battery_status.h"

#include <algorithm>

#include "system/system_state.h"

namespace veltra {

BatteryBand BandOf(int32_t capacity) {
  if (capacity >= 66) return BatteryBand::kHigh;
  if (capacity >= 33) return BatteryBand::kMedium;
  return capacity >= 5 ? BatteryBand::kLow : BatteryBand::kEmpty;
}

void BatteryStatus::SetCapacity(int32_t percent) {
  if (percent == capacity) return;
  capacity = percent;
  Log().WriteDetail(TEXT("Battery: Capacity"), FormatText(TEXT("%d"), percent));
}

PowerSource BatteryStatus::GetPowerSource() {
  if (!adapterPresent)
    powerSource = PowerSource::kBattery;
  else if (!batteryPresent)
    powerSource = PowerSource::kAcNoBattery;
  else
    powerSource = capacity == 100 ? PowerSource::kAcFull : PowerSource::kAcCharging;
  return powerSource;
}

bool BatteryStatus::IsCritical() {
  return GetPowerSource() == PowerSource::kBattery && capacity <= BattCritPercentage;
}

WideText BatteryStatus::Describe() const {
  return FormatText(TEXT("battery at %d %%, critical at %d %%"), capacity, BattCritPercentage);
}

void BatteryStatus::SetDetail(int index, Bytes reply) {
  constexpr size_t kLongestDetail = 255;
  const std::string_view text = TextOf(reply.first(std::min(reply.size(), kLongestDetail)));
  details[index] = Widen(text.substr(0, text.find('\0')));
}

WideText BatteryStatus::GetDetail(int index) const {
  const auto found = details.find(index);
  return found == details.end() ? WideText() : found->second;
}

}  // namespace veltra
