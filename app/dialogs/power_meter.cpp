#include "app/dialogs/power_meter.h"

#include <windows.h>

#include <commctrl.h>

#include <algorithm>

#include "app/app_state.h"
#include "app/dialogs/control_names.h"
#include "app/dialogs/dialog_items.h"
#include "app/settings_store.h"
#include "link/send_queue.h"
#include "resources/resource_ids.h"
#include "system/language.h"
#include "system/numbers.h"

namespace veltra {
namespace {

constexpr UINT_PTR kRefreshTimer = 1;
constexpr UINT kRefreshMs = 1500;

constexpr ItemLabel kLabels[] = {
    {IDP_STATUS_GROUP, IDS_POWER_STATUS},
    {IDP_LOW_GROUP, IDS_LOW_ALARM},
    {IDP_CRITICAL_GROUP, IDS_CRITICAL_ALARM},
    {IDP_LOW, IDS_ACTIVATE_LOW_ALARM},
    {IDP_CRITICAL, IDS_ACTIVATE_CRITICAL_ALARM},
    {IDP_SOURCE_LABEL, IDS_CURRENT_SOURCE},
    {IDP_REMAINING_LABEL, IDS_POWER_REMAINING},
    {IDOK, IDS_OK},
    {IDCANCEL, IDS_CANCEL},
};

// ---- the two alarms ---------------------------------------------------------------------------------------

struct Alarm {
  int check;
  int level;  // the trackbar
  int value;  // its position in words
  int highest;
  int ticks[3];
  bool BatteryStatus::*isOn;
  int32_t BatteryStatus::*percentage;
};
constexpr int kLowestLevel = 3;
constexpr Alarm kAlarms[] = {
    {IDP_LOW,
     IDP_LOW_LEVEL,
     IDP_LOW_VALUE,
     60,
     {15, 30, 45},
     &BatteryStatus::BattLow,
     &BatteryStatus::BattLowPercentage},
    {IDP_CRITICAL,
     IDP_CRITICAL_LEVEL,
     IDP_CRITICAL_VALUE,
     30,
     {8, 15, 23},
     &BatteryStatus::BattCrit,
     &BatteryStatus::BattCritPercentage},
};

WideText Percent(int32_t value) {
  return FormatText(TEXT("%d%%"), value);
}

void InitAlarm(HWND dialog, const Alarm& alarm) {
  const BatteryStatus& battery = Power().battery;
  const int32_t percentage = battery.*alarm.percentage;
  SendDlgItemMessageW(dialog, alarm.level, TBM_SETRANGE, TRUE, MAKELPARAM(kLowestLevel, alarm.highest));
  for (const int tick : alarm.ticks) SendDlgItemMessageW(dialog, alarm.level, TBM_SETTIC, 0, tick);
  SendDlgItemMessageW(dialog, alarm.level, TBM_SETPOS, TRUE, percentage);
  SetItemText(dialog, alarm.value, Percent(percentage));
  CheckItem(dialog, alarm.check, battery.*alarm.isOn);
  EnableItem(dialog, alarm.level, battery.*alarm.isOn);
}

void StoreAlarms(HWND dialog) {
  BatteryStatus& battery = Power().battery;
  for (const Alarm& alarm : kAlarms) {
    battery.*alarm.percentage = GetSliderPosition(dialog, alarm.level);
    battery.*alarm.isOn = IsItemChecked(dialog, alarm.check);
  }
}

// ---- the power status -------------------------------------------------------------------------------------

// What the dialog shows, so that a control is set only when its content changes.
struct Shown {
  WideText source;
  WideText remaining;
  int icon = 0;
};

// By band.
constexpr int kBatteryPictures[] = {IDI_METER_HIGH, IDI_METER_MEDIUM, IDI_METER_LOW, IDI_METER_EMPTY};

Shown PowerStatus() {
  BatteryStatus& battery = Power().battery;
  const PowerSource source = battery.GetPowerSource();
  const WideText percent = Percent(battery.capacity);
  if (source == PowerSource::kBattery)
    return {LoadResString(IDS_BATTERIES), percent,
            kBatteryPictures[static_cast<size_t>(BandOf(battery.capacity))]};
  const WideText mains = LoadResString(IDS_AC_POWER);
  if (source == PowerSource::kAcCharging)
    return {mains, percent + TEXT(" (") + LoadResString(IDS_CHARGING) + TEXT(")"), IDI_METER_CHARGING};
  if (source == PowerSource::kAcFull) return {mains, TEXT("100%"), IDI_METER_MAINS};
  return {mains, TEXT("n/a"), IDI_METER_MAINS};
}

void ShowPicture(HWND dialog, int icon) {
  const HICON picture = LoadIconW(System().hInstance, MAKEINTRESOURCEW(icon));
  SendDlgItemMessageW(dialog, IDP_ICON, STM_SETICON, reinterpret_cast<WPARAM>(picture), 0);
}

void Refresh(HWND dialog, Shown& shown) {
  Shown now = PowerStatus();
  if (now.source != shown.source) SetItemText(dialog, IDP_SOURCE, now.source);
  if (now.icon != shown.icon) ShowPicture(dialog, now.icon);
  if (now.remaining != shown.remaining) SetItemText(dialog, IDP_REMAINING, now.remaining);
  shown = std::move(now);
}

// ---- messages ---------------------------------------------------------------------------------------------

void OnInit(HWND dialog, WPARAM, LPARAM shown) {
  SetWindowLongPtrW(dialog, DWLP_USER, shown);
  for (const Alarm& alarm : kAlarms) InitAlarm(dialog, alarm);
  SetWindowTextW(dialog, LoadResString(IDS_POWER_METER).c_str());
  SetLabels(dialog, kLabels);
  NameControls(dialog);
  SendMessageW(dialog, WM_TIMER, kRefreshTimer, 0);
}

void OnTimer(HWND dialog, WPARAM, LPARAM) {
  KillTimer(dialog, kRefreshTimer);
  Refresh(dialog, *reinterpret_cast<Shown*>(GetWindowLongPtrW(dialog, DWLP_USER)));
  SetTimer(dialog, kRefreshTimer, kRefreshMs, nullptr);
}

void OnScroll(HWND dialog, WPARAM wParam, LPARAM lParam) {
  const WORD code = LOWORD(wParam);
  const WORD position = HIWORD(wParam);
  const HWND trackbar = reinterpret_cast<HWND>(lParam);
  const Alarm& alarm = kAlarms[trackbar == GetDlgItem(dialog, kAlarms[0].level) ? 0 : 1];
  if (code == TB_ENDTRACK)
    SetItemText(dialog, alarm.value, Percent(GetSliderPosition(dialog, alarm.level)));
  else if (code == TB_THUMBPOSITION || code == TB_THUMBTRACK)
    SetItemText(dialog, alarm.value, Percent(position));
}

void OnClose(HWND dialog, WPARAM, LPARAM) {
  KillTimer(dialog, kRefreshTimer);
  EndDialog(dialog, 0);
}

void OnOk(HWND dialog) {
  KillTimer(dialog, kRefreshTimer);
  StoreAlarms(dialog);
  const int32_t critical = Power().battery.BattCritPercentage;
  SendText(std::string("SetBatteryCritical=").append(std::to_string(critical)));
  SaveSettings();
  EndDialog(dialog, IDOK);
}

void OnCommand(HWND dialog, WPARAM wParam, LPARAM) {
  const WORD id = LOWORD(wParam);
  if (id == IDOK) return OnOk(dialog);
  if (id == IDCANCEL) return static_cast<void>(SendMessageW(dialog, WM_CLOSE, 0, 0));
  for (const Alarm& alarm : kAlarms)
    if (alarm.check == id) EnableItem(dialog, alarm.level, IsItemChecked(dialog, alarm.check));
}

constexpr DialogRow kDialogRows[] = {
    {WM_INITDIALOG, OnInit}, {WM_TIMER, OnTimer},
    {WM_HSCROLL, OnScroll},  {WM_COMMAND, OnCommand},
    {WM_CLOSE, OnClose},     {WM_DESTROY, [](HWND dialog, WPARAM, LPARAM) { ForgetControlNames(dialog); }},
};

INT_PTR CALLBACK PowerMeterProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  return HandleDialogMessage(TEXT("power meter"), kDialogRows, dialog, message, wParam, lParam);
}

}  // namespace

void OpenPowerMeter() {
  AppState& app = App();
  if (app.PowerMeterOpen) return;
  app.PowerMeterOpen = true;
  Shown shown;
  RunDialog(TEXT("BATTERYBOX"), PowerMeterProcedure, reinterpret_cast<LPARAM>(&shown));
  app.PowerMeterOpen = false;
}

}  // namespace veltra
