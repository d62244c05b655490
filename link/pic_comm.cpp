#include "link/pic_comm.h"

#include "link/link_state.h"
#include "link/send_queue.h"
#include "link/serial_input.h"
#include "system/numbers.h"
#include "system/system_state.h"

namespace veltra {
namespace {

constexpr const WCHAR* kDeviceChangeTag = TEXT("Err device change");

bool IsLineLost() {
  return Link().picPort && !Link().picPort->IsMonitoring();
}

void StartPortRetryTimer() {
  SetTimer(MainWindow(), PORT_RETRY_TIMER, kPortRetryMs, nullptr);
}
void StopPortRetryTimer() {
  KillTimer(MainWindow(), PORT_RETRY_TIMER);
}

}  // namespace

bool StartPicComm() {
  StopPicComm();
  auto port = std::make_shared<VeltraFramework::CSerialInput>(Link().PicPortNumber, WideText());
  if (!port->IsOpen()) {
    Log().Write(TEXT("StartPicComm"), TEXT("failed to open port"));
    return false;
  }
  Link().picPort = std::move(port);
  Link().picPort->StartMon(MainWindow(), nullptr);
  return true;
}

void StopPicComm() {
  const auto port = std::move(Link().picPort);
  Link().picPort = nullptr;
  Link().whenLineIsGone();
  ClearPicQueue();
  if (!port) return;
  port->StopMon();
  port->Close();
}

bool IsPicPortOpen() {
  return Link().picPort != nullptr;
}

void OnPicPortChange(const WideText& portName, bool arrived) {
  Log().WriteError(
      kDeviceChangeTag,
      FormatText(TEXT("%s: %s"), arrived ? TEXT("Port arrived") : TEXT("Port removed"), portName));
  if (portName != FormatText(TEXT("COM%d"), Link().PicPortNumber)) return;
  StopPicComm();
  if (arrived) {
    StopPortRetryTimer();
    StartPicComm();
    Log().WriteError(kDeviceChangeTag, TEXT("Pic port reconnected"));
  } else {
    Log().WriteError(kDeviceChangeTag, TEXT("Pic port dropped"));
    StartPortRetryTimer();
  }
}

void OnPicLineLost() {
  if (!IsLineLost()) return;  // a message of an earlier opening
  Log().WriteError(kDeviceChangeTag, TEXT("Pic port lost without notice"));
  Link().whenLineIsGone();
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
