#include "firmware/update_guard.h"

#include <windows.h>

#include "app/app_state.h"
#include "app/language.h"
#include "resources/resource_ids.h"

namespace veltra {
namespace {

void HoldSession() {
  SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED);
  ShutdownBlockReasonCreate(GetAppState().hMainWnd, LoadResString(IDS_FIRMWARE_UPDATE_RUNS).c_str());
}

void LetSessionGo() {
  ShutdownBlockReasonDestroy(GetAppState().hMainWnd);
  SetThreadExecutionState(ES_CONTINUOUS);
}

}  // namespace

void UpdateGuard::Set(bool on) {
  if (on == on_) return;
  on_ = on;
  if (on)
    HoldSession();
  else
    LetSessionGo();
}

}  // namespace veltra
