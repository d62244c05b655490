// Icons in the notification area.
#include <shellapi.h>

#include <algorithm>

#include "pal/machine/state.h"

using namespace pal;

namespace {

constexpr UINT kKnownFields = NIF_MESSAGE | NIF_ICON | NIF_TIP | NIF_INFO;

template <size_t Size>
std::u16string TextOf(const WCHAR (&field)[Size]) {
  return {field, std::find(std::begin(field), std::end(field), u'\0')};
}

// Takes over the fields that the record declares valid, and notes them in the effect.
void Apply(const Pictures& pictures, const NOTIFYICONDATAW& data, TrayIcon& icon, TrayChange& change) {
  if (data.uFlags & NIF_MESSAGE) icon.callbackMessage = data.uCallbackMessage;
  if (data.uFlags & NIF_ICON) {
    change.picture = icon.picture = pictures.ResourceOf(data.hIcon);
    change.pictureSize = pictures.SizeOf(data.hIcon);
  }
  if (data.uFlags & NIF_TIP) change.tooltip = icon.tooltip = TextOf(data.szTip);
  if (data.uFlags & NIF_INFO)
    change.balloon =
        TrayBalloon{TextOf(data.szInfoTitle), TextOf(data.szInfo), data.dwInfoFlags, data.uTimeout};
}

}  // namespace

BOOL WINAPI Shell_NotifyIconW(DWORD message, PNOTIFYICONDATAW data) {
  const Call call("Shell_NotifyIconW");
  if (call.Fails()) return FALSE;
  if (data->cbSize != sizeof(NOTIFYICONDATAW)) Die("Shell_NotifyIconW with a record of another size");
  if (data->uFlags & ~kKnownFields) Die("Shell_NotifyIconW with an unknown field");
  NotificationArea& area = call->tray;
  if (!area.isUp || !call->desktop.Find(data->hWnd)) return FALSE;
  const auto icon = std::ranges::find_if(
      area.icons, [&](const TrayIcon& other) { return other.window == data->hWnd && other.id == data->uID; });
  const bool stands = icon != area.icons.end();

  TrayChange change;
  change.id = data->uID;
  switch (message) {
    case NIM_ADD:
      if (stands) return FALSE;
      change.action = TrayChange::Action::kAdded;
      area.icons.push_back({data->hWnd, data->uID, 0, 0, {}});
      Apply(call->pictures, *data, area.icons.back(), change);
      break;
    case NIM_MODIFY:
      if (!stands) return FALSE;
      change.action = TrayChange::Action::kChanged;
      Apply(call->pictures, *data, *icon, change);
      break;
    case NIM_DELETE:
      if (!stands) return FALSE;
      change.action = TrayChange::Action::kRemoved;
      area.icons.erase(icon);
      break;
    default:
      Die("Shell_NotifyIconW with an unknown message");
  }
  call->Emit(std::move(change));
  return TRUE;
}
