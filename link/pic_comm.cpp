#include "link/pic_comm.h"

#include "app/app_state.h"
#include "link/send_queue.h"
#include "link/serial_input.h"
#include "switches/switch_outputs.h"

namespace veltra {
namespace {

constexpr const WCHAR* kDeviceChangeTag = TEXT("Err device change");

bool IsLineLost() {
  const AppState& state = GetAppState();
  return state.picPort && !state.picPort->IsMonitoring();
}

void StartPortRetryTimer() {
  SetTimer(GetAppState().hMainWnd, PORT_RETRY_TIMER, kPortRetryMs, nullptr);
}
void StopPortRetryTimer() {
  KillTimer(GetAppState().hMainWnd, PORT_RETRY_TIMER);
}

}  // namespace

bool StartPicComm() {
  StopPicComm();
  AppState& state = GetAppState();
  auto port = std::make_shared<VeltraFramework::CSerialInput>(state.PicPortNumber, WideText());
  if (!port->IsOpen()) {
    state.log.Write(TEXT("StartPicComm"), TEXT("failed to open port"));
    return false;
  }
  state.picPort = std::move(port);
  state.picPort->StartMon(state.hMainWnd, nullptr);
  return true;
}

void StopPicComm() {
  AppState& state = GetAppState();
  const auto port = std::move(state.picPort);
  state.picPort = nullptr;
  ForgetHeldSwitches();
  ClearPicQueue();
  if (!port) return;
  port->StopMon();
  port->Close();
}

void OnPicPortChange(const WideText& portName, bool arrived) {
  AppState& state = GetAppState();
  state.log.WriteError(
      kDeviceChangeTag,
      FormatText(TEXT("%s: %s"), arrived ? TEXT("Port arrived") : TEXT("Port removed"), portName));
  if (portName != FormatText(TEXT("COM%d"), state.PicPortNumber)) return;
  StopPicComm();
  if (arrived) {
    StopPortRetryTimer();
    StartPicComm();
    state.log.WriteError(kDeviceChangeTag, TEXT("Pic port reconnected"));
  } else {
    state.log.WriteError(kDeviceChangeTag, TEXT("Pic port dropped"));
    StartPortRetryTimer();
  }
}

void OnPicLineLost() {
  if (!IsLineLost()) return;  // a message of an earlier opening
  GetAppState().log.WriteError(kDeviceChangeTag, TEXT("Pic port lost without notice"));
  ForgetHeldSwitches();
  StartPortRetryTimer();
}

void ReopenLostLine() {
  if (!IsLineLost()) return;
  StopPortRetryTimer();
  StartPicComm();
}

void OnPortRetryTimer() {
  StopPortRetryTimer();
  StartPicComm();
}

}  // namespace veltra
