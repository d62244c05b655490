// What the notification area was told last: a record.
#pragma once

#include <windows.h>

#include <cstdint>
#include <map>

#include "base/handles.h"
#include "base/text.h"

namespace veltra {

struct TrayState {
  static constexpr int32_t kNoIcon = -1;

  WideText LastTooltip;  // of icon A
  int32_t LastIconId = kNoIcon;
  bool powerIconStands = false;
  bool toolIconStands = false;
  std::map<int32_t, UniqueIcon> icons;  // pictures by resource id
};

}  // namespace veltra
