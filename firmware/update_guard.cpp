#include "firmware/update_guard.h"

#include <windows.h>

#include "resources/resource_ids.h"
#include "system/language.h"
#include "system/system_state.h"

namespace veltra {
namespace {

void HoldSession() {
  SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED);
  ShutdownBlockReasonCreate(MainWindow(), LoadResString(IDS_FIRMWARE_UPDATE_RUNS).c_str());
}

void LetSessionGo() {
  ShutdownBlockReasonDestroy(MainWindow());
  SetThreadExecutionState(ES_CONTINUOUS);
}

}  // namespace

bool UpdateGuard::Set(bool on) {
  if (on == on_) return false;
  on_ = on;
  if (on)
    HoldSession();
  else
    LetSessionGo();
  return true;
}

}  // namespace veltra
