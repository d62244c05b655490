#include "app/power_events.h"

#include <utility>

#include "app/app_state.h"
#include "app/startup.h"
#include "board/codec.h"
#include "board/expander.h"
#include "power/battery_alarms.h"
#include "switches/switch_outputs.h"

namespace veltra {
namespace {

void PowerDownBoard() {
  const AppState& state = GetAppState();
  if (state.DisableUSBBack) SetPortA(kExpanderUsbBackOff);
  if (state.DisableUSBBottom) SetPortB(kExpanderUsbBottomOff);
  CodecPowerDown();
}

void OnSuspend() {
  AppState& state = GetAppState();
  state.log.WriteDetail(TEXT("Suspend"), TEXT("Device going to suspend"));
  StopBatteryTimer();
  ReleaseHeldSwitches();
  if (!std::exchange(state.Suspended, true)) PowerDownBoard();
}

void OnResume() {
  AppState& state = GetAppState();
  state.log.WriteDetail(TEXT("Resume"), TEXT("Device resuming"));
  if (!std::exchange(state.Suspended, false)) return;
  if (state.WakeupDelay > 0)
    SetTimer(state.hMainWnd, kResumeTimer, static_cast<UINT>(state.WakeupDelay), nullptr);
  else
    RunStartupSequence(true);
}

}  // namespace

void OnPowerEvent(WPARAM event) {
  if (event == PBT_APMSUSPEND) OnSuspend();
  if (event == PBT_APMRESUMEAUTOMATIC) OnResume();
}

void OnResumeTimer() {
  const AppState& state = GetAppState();
  KillTimer(state.hMainWnd, kResumeTimer);
  if (!state.Suspended) RunStartupSequence(true);
}

}  // namespace veltra
