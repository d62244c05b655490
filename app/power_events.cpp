#include "app/power_events.h"

#include <algorithm>
#include <utility>

#include "app/app_state.h"
#include "app/startup.h"
#include "base/at_end.h"
#include "board/codec.h"
#include "board/expander.h"
#include "board/i2c.h"
#include "power/battery_alarms.h"
#include "switches/switch_events.h"
#include "system/numbers.h"

namespace veltra {
namespace {

void PowerDownBoard() {
  HurryWrites();
  const AtEnd hurried(TakeTimeToWrite);
  if (Power().DisableUSBBack) SetPortA(kExpanderUsbBackOff);
  if (Power().DisableUSBBottom) SetPortB(kExpanderUsbBottomOff);
  CodecPowerDown();
}

void OnSuspend() {
  Log().WriteDetail(TEXT("Suspend"), TEXT("Device going to suspend"));
  StopBatteryTimer();
  System().suspendedAt = GetTickCount();
  ForgetHeldSwitches();
  if (!std::exchange(System().Suspended, true)) PowerDownBoard();
}

void OnResume() {
  const int32_t delay = App().WakeupDelay;
  Log().WriteDetail(TEXT("Resume"), TEXT("Device resuming"));
  if (!std::exchange(System().Suspended, false)) return;
  if (delay > 0)
    SetTimer(MainWindow(), kResumeTimer, static_cast<UINT>(delay), nullptr);
  else
    RunStartupSequence(true);
}

}  // namespace

void OnPressWhileSuspended() {
  constexpr int32_t kFallsAsleepMs = 5000;  // Windows itself waits 2 s for programs
  const auto sinceSuspend = static_cast<int32_t>(static_cast<DWORD>(GetMessageTime()) - System().suspendedAt);
  if (!IsSuspended() || sinceSuspend < kFallsAsleepMs) return;
  Log().WriteError(TEXT("Resume"), TEXT("not announced, a press ends the suspend"));
  System().Suspended = false;
  SetTimer(MainWindow(), kResumeTimer, static_cast<UINT>(std::max(App().WakeupDelay, 0)), nullptr);
}

void OnPowerEvent(WPARAM event) {
  if (event == PBT_APMSUSPEND) OnSuspend();
  if (event == PBT_APMRESUMEAUTOMATIC) OnResume();
}

void OnResumeTimer() {
  KillTimer(MainWindow(), kResumeTimer);
  if (!System().Suspended) RunStartupSequence(true);
}

}  // namespace veltra
