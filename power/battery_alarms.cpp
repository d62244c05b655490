#include "power/battery_alarms.h"

#include "power/alarm_decision.h"
#include "power/power_state.h"
#include "resources/resource_ids.h"
#include "system/language.h"
#include "system/numbers.h"
#include "system/power_off.h"
#include "system/sounds.h"
#include "system/system_state.h"
#include "system/tray_icons.h"

namespace veltra {
namespace {

constexpr DWORD kCriticalWarningMs = 4000;  // between the critical warning and the power-off

// By band.
constexpr int32_t kBatteryPictures[] = {IDI_BATTERY_HIGH, IDI_BATTERY_MEDIUM, IDI_BATTERY_LOW,
                                        IDI_BATTERY_EMPTY};

AlarmDecision Decide() {
  BatteryStatus& battery = Power().battery;
  return DecideAlarm({.onBattery = battery.GetPowerSource() == PowerSource::kBattery,
                      .capacity = battery.capacity,
                      .lowEnabled = battery.BattLow,
                      .criticalEnabled = battery.BattCrit,
                      .lowLevel = battery.BattLowPercentage,
                      .criticalLevel = battery.BattCritPercentage,
                      .lowAlarmLevel = Power().lowAlarmLevel});
}

void WarnLow() {
  PlayResourceSound(IDW_LOW_ALARM, false);
  ShowTrayBalloon(LoadResString(IDS_LOW_BALLOON));
}

void WarnAndPowerOff() {
  PlayResourceSound(IDW_CRITICAL_ALARM, false);
  UpdateTrayIcon(MainWindow(), System().tray.LastTooltip, IDI_BATTERY_EMPTY, false);  // it may be hidden
  ShowTrayBalloon(LoadResString(IDS_CRITICAL_BALLOON));
  if (Power().isUpdateRunning()) return;  // the next check looks again
  Sleep(kCriticalWarningMs);
  if (PowerOffSystem(EWX_POWEROFF | EWX_FORCE, SHTDN_REASON_MAJOR_POWER | SHTDN_REASON_MINOR_POWER_SUPPLY,
                     Power().battery.Describe()))
    SendMessageW(MainWindow(), WM_CLOSE, 0, 0);
}

void Check() {
  RetryTrayIcons(MainWindow());  // before a balloon needs one
  const AlarmDecision decision = Decide();
  Power().lowAlarmLevel = decision.lowAlarmLevel;
  if (decision.alarm == BatteryAlarm::kLow) WarnLow();
  if (decision.alarm == BatteryAlarm::kCritical) WarnAndPowerOff();
  UpdateTrayBatteryIcon();
}

}  // namespace

void StartBatteryTimer() {
  if (!IsSuspended()) SetTimer(MainWindow(), kBatteryTimer, kBatteryCheckMs, nullptr);
}

void StopBatteryTimer() {
  const HWND window = MainWindow();
  KillTimer(window, kBatteryTimer);
  MSG message = {};
  PeekMessageW(&message, window, WM_TIMER, WM_TIMER, PM_REMOVE);
}

void CheckBatteryAlarms() {
  StopBatteryTimer();
  try {
    Check();
  } catch (...) {
    StartBatteryTimer();
    throw;
  }
  StartBatteryTimer();
}

void UpdateTrayBatteryIcon() {
  const int32_t capacity = Power().battery.capacity;
  const PowerSource source = Power().battery.GetPowerSource();
  WideText tooltip = LoadResString(IDS_AC_POWER);
  int32_t iconId = IDI_MAINS;
  if (source == PowerSource::kBattery || source == PowerSource::kAcCharging)
    tooltip = FormatText(LoadResString(IDS_PERCENT_REMAINING), capacity);
  if (source == PowerSource::kBattery) iconId = kBatteryPictures[static_cast<size_t>(BandOf(capacity))];
  if (source == PowerSource::kAcCharging) {
    tooltip += TEXT(" (") + LoadResString(IDS_CHARGING) + TEXT(")");
    iconId = IDI_CHARGING;
  }
  UpdateTrayIcon(MainWindow(), tooltip, iconId, false);
}

}  // namespace veltra
