// The two icons in the notification area: A shows the power state and carries the warnings, B is the tool's
// own.
#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <utility>

#include "base/handles.h"
#include "base/text.h"

namespace veltra {

// What the notification area was told last.
struct TrayState {
  static constexpr int32_t kNoIcon = -1;

  WideText LastTooltip;  // of icon A
  int32_t LastIconId = kNoIcon;
  WideText toolWarning;  // the tooltip of icon B, in the place of the model's name; empty: none
  bool toolWarningTold = false;
  bool powerIconStands = false;
  bool toolIconStands = false;
  std::map<std::pair<int32_t, int>, UniqueIcon> icons;  // pictures by resource id and size
};

constexpr UINT kPowerIconId = 1977;
constexpr UINT kToolIconId = 1978;

// Adds both icons with their first pictures; also after the shell has started again. An icon that the shell
// does not take, because it is not up yet, is tried again by RetryTrayIcons.
void AddTrayIcons(HWND window);
void RetryTrayIcons(HWND window);
void RemoveTrayIcons(HWND window);

// Picture and tooltip of icon A; nothing is sent when both are as they were.
void UpdateTrayIcon(HWND window, const WideText& text, int32_t iconId, bool balloon);
// A warning at icon A: at most 255 characters, for 10 seconds.
void ShowTrayBalloon(const WideText& text);
// A warning that lasts: icon B tells it once in a balloon and in its tooltip until it is empty. At most 127
// characters.
void SetToolWarning(const WideText& text);

// An icon of the program's resources at the size of the notification area; loaded once for each size. Null
// when it is missing.
HICON LoadTrayIcon(int32_t iconId);

}  // namespace veltra
