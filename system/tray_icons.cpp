#include "system/tray_icons.h"

#include <shellapi.h>

#include <algorithm>

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

NOTIFYICONDATAW IconRecord(HWND window, UINT id) {
  NOTIFYICONDATAW record = {};
  record.cbSize = sizeof(record);
  record.hWnd = window;
  record.uID = id;
  return record;
}

bool AddIcon(HWND window, UINT id, UINT message, int32_t iconId) {
  NOTIFYICONDATAW record = IconRecord(window, id);
  record.uFlags = NIF_MESSAGE | NIF_ICON | NIF_TIP;
  record.uCallbackMessage = message;
  record.hIcon = LoadTrayIcon(iconId);
  CopyText(record.szTip, GetDeviceModelName());
  return Shell_NotifyIconW(NIM_ADD, &record) != FALSE;
}

bool AddPowerIcon(HWND window) {
  return AddIcon(window, kPowerIconId, kPowerIconMessage, IDI_BATTERY_HIGH);
}
bool AddToolIcon(HWND window) {
  return AddIcon(window, kToolIconId, kToolIconMessage, IDI_TOOL);
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
  if (balloon) {
    record.uFlags = NIF_INFO;
    record.dwInfoFlags = NIIF_WARNING;
    record.uTimeout = kBalloonMs;
    CopyText(record.szInfo, text);
    CopyText(record.szInfoTitle, GetDeviceModelName());
  }
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

HICON LoadTrayIcon(int32_t iconId) {
  UniqueIcon& icon = System().tray.icons[iconId];
  if (!icon)
    icon.Reset(static_cast<HICON>(LoadImageW(System().hInstance, MAKEINTRESOURCEW(iconId), IMAGE_ICON,
                                             GetSystemMetrics(SM_CXSMICON), GetSystemMetrics(SM_CYSMICON),
                                             LR_DEFAULTCOLOR)));
  return icon.Get();
}

}  // namespace veltra
