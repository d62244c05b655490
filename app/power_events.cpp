#include "app/power_events.h"

#include <utility>

#include "app/app_state.h"
#include "app/startup.h"
#include "switches/switch_outputs.h"

namespace veltra {
namespace {

constexpr UINT_PTR kBatteryTimer = 1;

// A timer's message may have been taken from the clock already.
void StopBatteryTimer() {
  const HWND window = GetAppState().hMainWnd;
  KillTimer(window, kBatteryTimer);
  MSG message = {};
  PeekMessageW(&message, window, WM_TIMER, WM_TIMER, PM_REMOVE);
}

void OnSuspend() {
  AppState& state = GetAppState();
  state.log.WriteDetail(TEXT("Suspend"), TEXT("Device going to suspend"));
  StopBatteryTimer();
  ReleaseHeldSwitches();
  state.suspended = true;
}

void OnResume() {
  AppState& state = GetAppState();
  state.log.WriteDetail(TEXT("Resume"), TEXT("Device resuming"));
  if (!std::exchange(state.suspended, false)) return;
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
  KillTimer(GetAppState().hMainWnd, kResumeTimer);
  RunStartupSequence(true);
}

}  // namespace veltra
