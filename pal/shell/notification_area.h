// The notification area of the taskbar.
#pragma once

#include <vector>

#include "pal/machine/machine.h"

namespace pal {

struct NotificationArea {
  bool isUp = true;
  std::vector<TrayIcon>
      icons;  // in the order of their adding; that of a dead program stays until it is clicked
};

}  // namespace pal
