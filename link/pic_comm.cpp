#include "link/pic_comm.h"

#include "link/link_state.h"
#include "link/send_queue.h"
#include "link/serial_input.h"
#include "resources/resource_ids.h"
#include "system/language.h"
#include "system/numbers.h"
#include "system/system_state.h"
#include "system/tray_icons.h"

namespace veltra {
namespace {

constexpr const WCHAR* kDeviceChangeTag = TEXT("Err device change");

bool IsLineLost() {
  return Link().picPort && !Link().picPort->IsMonitoring();
}

void StartPortRetryTimer() {
  Link().retryIsDue = true;
  SetTimer(MainWindow(), PORT_RETRY_TIMER, kPortRetryMs, nullptr);
}
void StopPortRetryTimer() {
  Link().retryIsDue = false;
  KillTimer(MainWindow(), PORT_RETRY_TIMER);
}

void TellThatItIsClosed(const WCHAR* why) {
  Log().Write(TEXT("StartPicComm"), why);
  if (!Link().retryIsDue) SetToolWarning(LoadResString(IDS_SWITCHES_DEAD));
}

}  // namespace

bool StartPicComm() {
  StopPicComm();
  auto port = std::make_shared<VeltraFramework::CSerialInput>(Link().PicPortNumber, WideText());
  if (!port->IsOpen()) {
    TellThatItIsClosed(TEXT("failed to open port"));
    return false;
  }
  if (!port->StartMon(MainWindow(), nullptr)) {
    TellThatItIsClosed(TEXT("failed to start the monitor"));
    return false;
  }
  Link().picPort = std::move(port);
  ++Link().openings;
  if (!PostMessageW(MainWindow(), WM_PIC_LINE_OPENED, Link().openings, 0)) RepeatAstrayHead();
  SetToolWarning({});
  return true;
}

void StopPicComm() {
  const auto port = std::move(Link().picPort);
  Link().picPort = nullptr;
  Link().whenLineIsGone();
  NoteLostAnswer();
  if (!port) return;
  port->StopMon();
  if (!port->IsOpen()) Log().WriteError(kDeviceChangeTag, TEXT("Pic port does not stop, left to its thread"));
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
  StopPicComm();
  StartPortRetryTimer();
}

void OnPicLineOpened(WPARAM opening) {
  if (opening == Link().openings) RepeatAstrayHead();
}

void ReopenClosedLine() {
  if (IsPicPortOpen() && !IsLineLost()) return;
  if (StartPicComm()) StopPortRetryTimer();
}

void OnPortRetryTimer() {
  StopPortRetryTimer();
  StartPicComm();
}

}  // namespace veltra
