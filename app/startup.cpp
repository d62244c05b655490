#include "app/startup.h"

#include <windows.h>

#include <utility>

#include "app/app_state.h"
#include "app/device_operations.h"
#include "board/codec.h"
#include "board/expander.h"
#include "board/i2c.h"
#include "link/pic_comm.h"
#include "link/send_queue.h"
#include "power/battery_alarms.h"
#include "power/battery_details.h"
#include "power/flight_mode_notice.h"
#include "switches/macro_plugin.h"
#include "switches/switch_events.h"
#include "system/sent_messages.h"
#include "system/windows_version.h"

namespace veltra {
namespace {

constexpr const char* kStartupQueries[] = {
    "Ready",          "GetSerial",       "GetPCBSerial",     "GetPCBVersion",
    "GetTouchSerial", "GetTouchVersion", "GetTouchFirmware",
};

void ShowBoardError(const WCHAR* format, int32_t code, const WCHAR* caption) {
  MessageBoxW(nullptr, FormatText(format, code).c_str(), caption, MB_OK | MB_ICONERROR);
}

void StartBoardLibrary() {
  const std::shared_ptr<const BoardLibrary> board = Board().library = LoadBoardLibrary();
  if (!board || !board->KEApiLibInitialize) return;
  const int32_t code = board->KEApiLibInitialize();
  if (code == 0) return;
  ShowBoardError(TEXT("Error during KEApiLibInitialize: %d"), code, TEXT("I2CInit"));
  ServeSentMessages();
}

void StopBoardLibrary(const BoardLibrary* board) {
  if (!board || !board->KEApiLibUnInitialize) return;
  if (const int32_t code = board->KEApiLibUnInitialize())
    ShowBoardError(TEXT("Error during KEApiLibUnInitialize: %d"), code, TEXT("I2CDeinit"));
}

void SwitchDisplayOn() {
  constexpr LPARAM kMonitorOn = -1;
  constexpr DWORD kMousePauseMs = 20;
  SendMessageW(GetDesktopWindow(), WM_SYSCOMMAND, SC_MONITORPOWER, kMonitorOn);
  mouse_event(MOUSEEVENTF_MOVE, 0, 1, 0, 0);
  Sleep(kMousePauseMs);
  mouse_event(MOUSEEVENTF_MOVE, 0, static_cast<DWORD>(-1), 0, 0);
}

void SwitchRadiosOn() {
  const bool mayRadiate = !Power().EnableFlightMode;
  if (mayRadiate && Power().EnableWLAN) SetPortA(kExpanderWlan);
  if (mayRadiate && Power().EnableBluetooth) DeviceOperation(0, kBluetoothOn);
  DeviceOperation(0, mayRadiate && Power().EnableMobilePhone ? kMobilePhoneOn : kMobilePhoneOff);
}

const WCHAR* IsThere(bool is) {
  return is ? TEXT("there") : TEXT("missing");
}

// What a technician asks first.
void LogWhatIsThere() {
  Log().WriteDetail(TEXT("Startup"),
                    FormatText(TEXT("version %s, COM%d %s"), GetOwnFileVersion(), Link().PicPortNumber,
                               IsPicPortOpen() ? TEXT("open") : TEXT("not open")));
  Log().WriteDetail(
      TEXT("Startup"),
      FormatText(TEXT("board %s, joystick %s, macros %s"), IsThere(Board().library != nullptr),
                 IsThere(Switches().joystick.IsComplete()), IsThere(Switches().macros != nullptr)));
}

void Start() {
  StartBoardLibrary();
  Log().WriteDetail(TEXT("Startup"), TEXT("Application starting"));
  StartPicComm();
  LogWhatIsThere();
  for (const char* query : kStartupQueries) SendText(query);
  QueryBatteryDetails();
  SwitchRadiosOn();
  StartFlightModeTimer();
}

void PowerUsbOn() {
  if (Power().DisableUSBBack) ClearPortA(kExpanderUsbBackOff);
  if (Power().DisableUSBBottom) ClearPortB(kExpanderUsbBottomOff);
}

void Resume() {
  Log().WriteDetail(TEXT("Resume"), TEXT("Device resuming from suspend"));
  ReopenClosedLine();
  SendText("Ready");
  SwitchDisplayOn();
  PowerUsbOn();
}

void PowerUpBoard() {
  SetPortA(kExpanderAlwaysA);
  SetPortB(kExpanderB3);
  MakeAllPinsOutputs();
  CodecPowerUp();
}

}  // namespace

void RunStartupSequence(bool resume) {
  if (resume)
    Resume();
  else
    Start();
  PowerUpBoard();
  StartBatteryTimer();
}

// The board's library and COM go at the end, or when who is at work with them up the stack has come back.
//
// The port is not stopped here but left to the end of the process: its monitor thread may hang in a driver,
// and the end of a session must not wait for that.
void RunShutdownSequence() {
  ForgetHeldSwitches();
  UnloadMacroLibrary();
  HurryWrites();
  CodecPowerDown();
  const auto board = std::move(Board().library);
  const auto com = std::move(System().com);
  DestroyAppState();
  StopBoardLibrary(board.get());
}

}  // namespace veltra
