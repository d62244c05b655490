#include "power/flight_mode_notice.h"

#include "power/power_state.h"
#include "resources/resource_ids.h"
#include "system/language.h"
#include "system/numbers.h"
#include "system/system_state.h"
#include "system/tray_icons.h"

namespace veltra {

void StartFlightModeTimer() {
  SetTimer(MainWindow(), kFlightModeTimer, kFlightModeNoticeMs, nullptr);
}

void OnFlightModeTimer() {
  KillTimer(MainWindow(), kFlightModeTimer);
  if (Power().EnableFlightMode) ShowTrayBalloon(LoadResString(IDS_FLIGHT_MODE_BALLOON));
}

}  // namespace veltra
