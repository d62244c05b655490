#include "power/flight_mode_notice.h"

#include "app/app_state.h"
#include "app/language.h"
#include "app/tray_icons.h"
#include "resources/resource_ids.h"

namespace veltra {

void StartFlightModeTimer() {
  SetTimer(GetAppState().hMainWnd, kFlightModeTimer, kFlightModeNoticeMs, nullptr);
}

void OnFlightModeTimer() {
  const AppState& state = GetAppState();
  KillTimer(state.hMainWnd, kFlightModeTimer);
  if (state.EnableFlightMode) ShowTrayBalloon(LoadResString(IDS_FLIGHT_MODE_BALLOON));
}

}  // namespace veltra
