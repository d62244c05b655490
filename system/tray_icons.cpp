#include "system/tray_icons.h"

#include <shellapi.h>

#include <algorithm>

#include "base/handles.h"
#include "resources/resource_ids.h"
#include "system/folders.h"
#include "system/numbers.h"
#include "system/system_state.h"

namespace veltra {
namespace {

constexpr UINT kBalloonMs = 10000;

template <size_t Size>
void CopyText(WCHAR (&field)[Size], const WideText& text) {
  const size_t length = std::min(text.size(), Size - 1);
  std::copy_n(text.begin(), length, field);
  field[length] = 0;
}

// Pixels. The notification area grows with the scaling of the display, which may change while the tool runs;
// before Windows 10 it could not.
int TrayIconSize() {
  using DpiOf = UINT(WINAPI*)(HWND);
  using MetricAt = int(WINAPI*)(int, UINT);
  const HMODULE windows = GetModuleHandleW(TEXT("user32.dll"));
  const auto dpiOf = FindExport<DpiOf>(windows, "GetDpiForWindow");
  const auto metricAt = FindExport<MetricAt>(windows, "GetSystemMetricsForDpi");
  const int size = dpiOf && metricAt ? metricAt(SM_CXSMICON, dpiOf(MainWindow())) : 0;
  return size > 0 ? size : GetSystemMetrics(SM_CXSMICON);
}

NOTIFYICONDATAW IconRecord(HWND window, UINT id) {
  NOTIFYICONDATAW record = {};
  record.cbSize = sizeof(record);
  record.hWnd = window;
  record.uID = id;
  return record;
}

// NIM_ADD, or NIM_MODIFY: it may stand already, when a try that timed out took effect, or when the shell told
// again and forgot nothing.
bool SendIcon(DWORD action, HWND window, UINT id, UINT message, int32_t iconId, const WideText& tooltip) {
  NOTIFYICONDATAW record = IconRecord(window, id);
  record.uFlags = NIF_MESSAGE | NIF_ICON | NIF_TIP;
  record.uCallbackMessage = message;
  record.hIcon = LoadTrayIcon(iconId);
  CopyText(record.szTip, tooltip);
  return Shell_NotifyIconW(action, &record) != FALSE;
}

void FillBalloon(NOTIFYICONDATAW& record, const WideText& text) {
  record.uFlags |= NIF_INFO;
  record.dwInfoFlags = NIIF_WARNING;
  record.uTimeout = kBalloonMs;
  CopyText(record.szInfo, text);
  CopyText(record.szInfoTitle, GetDeviceModelName());
}

WideText ToolTooltip() {
  const WideText& warning = System().tray.toolWarning;
  return warning.empty() ? GetDeviceModelName() : warning;
}

// Its tooltip, and the balloon of a warning that nobody has seen yet.
void UpdateToolIcon(HWND window) {
  TrayState& tray = System().tray;
  NOTIFYICONDATAW record = IconRecord(window, kToolIconId);
  record.uFlags = NIF_TIP;
  CopyText(record.szTip, ToolTooltip());
  if (!tray.toolWarning.empty() && !tray.toolWarningTold) FillBalloon(record, tray.toolWarning);
  tray.toolWarningTold = Shell_NotifyIconW(NIM_MODIFY, &record) != FALSE;
}

// One that stands goes on saying what it said last.
bool AddPowerIcon(HWND window) {
  const TrayState& tray = System().tray;
  const auto send = [window](DWORD action, int32_t iconId, const WideText& tooltip) {
    return SendIcon(action, window, kPowerIconId, kPowerIconMessage, iconId, tooltip);
  };
  if (send(NIM_ADD, IDI_BATTERY_HIGH, GetDeviceModelName())) return true;
  if (tray.LastIconId == TrayState::kNoIcon) return send(NIM_MODIFY, IDI_BATTERY_HIGH, GetDeviceModelName());
  return send(NIM_MODIFY, tray.LastIconId, tray.LastTooltip);
}
bool AddToolIcon(HWND window) {
  const auto send = [window](DWORD action) {
    return SendIcon(action, window, kToolIconId, kToolIconMessage, IDI_TOOL, ToolTooltip());
  };
  if (!send(NIM_ADD) && !send(NIM_MODIFY)) return false;
  const TrayState& tray = System().tray;
  if (!tray.toolWarning.empty() && !tray.toolWarningTold) UpdateToolIcon(window);
  return true;
}

void RemoveIcon(HWND window, UINT id) {
  NOTIFYICONDATAW record = IconRecord(window, id);
  Shell_NotifyIconW(NIM_DELETE, &record);
}

}  // namespace

void AddTrayIcons(HWND window) {
  TrayState& tray = System().tray;
  tray.powerIconStands = AddPowerIcon(window);
  tray.toolIconStands = AddToolIcon(window);
}

// What was sent to an icon that did not stand yet is lost, so the next update sends all of it.
void RetryTrayIcons(HWND window) {
  TrayState& tray = System().tray;
  if (!tray.powerIconStands && AddPowerIcon(window)) {
    tray.powerIconStands = true;
    tray.LastTooltip.clear();
    tray.LastIconId = TrayState::kNoIcon;
  }
  if (!tray.toolIconStands) tray.toolIconStands = AddToolIcon(window);
}

void RemoveTrayIcons(HWND window) {
  RemoveIcon(window, kPowerIconId);
  RemoveIcon(window, kToolIconId);
}

void UpdateTrayIcon(HWND window, const WideText& text, int32_t iconId, bool balloon) {
  TrayState& tray = System().tray;
  NOTIFYICONDATAW record = IconRecord(window, kPowerIconId);
  if (balloon) FillBalloon(record, text);
  if (!balloon && text != tray.LastTooltip) {
    record.uFlags |= NIF_TIP;
    CopyText(record.szTip, text);
    tray.LastTooltip = text;
  }
  if (!balloon && iconId != tray.LastIconId) {
    record.uFlags |= NIF_ICON;
    record.hIcon = LoadTrayIcon(iconId);
    tray.LastIconId = iconId;
  }
  if (record.uFlags != 0) Shell_NotifyIconW(NIM_MODIFY, &record);
}

void ShowTrayBalloon(const WideText& text) {
  UpdateTrayIcon(MainWindow(), text, TrayState::kNoIcon, true);
}

void SetToolWarning(const WideText& text) {
  TrayState& tray = System().tray;
  if (text == tray.toolWarning) return;
  tray.toolWarning = text;
  tray.toolWarningTold = false;
  UpdateToolIcon(MainWindow());
}

HICON LoadTrayIcon(int32_t iconId) {
  const int size = TrayIconSize();
  UniqueIcon& icon = System().tray.icons[{iconId, size}];
  if (!icon)
    icon.Reset(static_cast<HICON>(
        LoadImageW(System().hInstance, MAKEINTRESOURCEW(iconId), IMAGE_ICON, size, size, LR_DEFAULTCOLOR)));
  return icon.Get();
}

}  // namespace veltra
