// Which battery alarm is due, a pure core.
#pragma once

#include <cstdint>

namespace veltra {

enum class BatteryAlarm { kNone, kLow, kCritical };

constexpr int32_t kAlarmArmed = -1;

struct AlarmSituation {
  bool onBattery = false;
  int32_t capacity = 0;  // percent, like the levels
  bool lowEnabled = false;
  bool criticalEnabled = false;
  int32_t lowLevel = 0;
  int32_t criticalLevel = 0;
  int32_t lowAlarmLevel = kAlarmArmed;  // the capacity of the last low alarm
};

struct AlarmDecision {
  BatteryAlarm alarm = BatteryAlarm::kNone;
  int32_t lowAlarmLevel = kAlarmArmed;  // what to remember
};

// The low alarm sounds when the capacity first reaches its level and again at each further drop; a capacity
// that rises arms it again without an alarm. The critical alarm has no memory. On mains both rest.
constexpr AlarmDecision DecideAlarm(const AlarmSituation& now) {
  if (!now.onBattery) return {};
  if (now.criticalEnabled && now.capacity <= now.criticalLevel)
    return {BatteryAlarm::kCritical, now.lowAlarmLevel};
  if (!now.lowEnabled || now.capacity > now.lowLevel) return {};
  if (now.lowAlarmLevel == kAlarmArmed || now.capacity < now.lowAlarmLevel)
    return {BatteryAlarm::kLow, now.capacity};
  if (now.capacity == now.lowAlarmLevel) return {BatteryAlarm::kNone, now.lowAlarmLevel};
  return {};
}

}  // namespace veltra
