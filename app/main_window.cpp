#include "app/main_window.h"

#include <dbt.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

#include "app/app_state.h"
#include "app/device_operations.h"
#include "app/dialogs/firmware_dialog.h"
#include "app/dialogs/options_dialog.h"
#include "app/dialogs/power_meter.h"
#include "app/pic_receiver.h"
#include "app/power_events.h"
#include "app/settings_store.h"
#include "app/startup.h"
#include "app/tray_menu.h"
#include "base/called_by_windows.h"
#include "base/table.h"
#include "board/codec.h"
#include "link/identity_updates.h"
#include "link/infrared.h"
#include "link/pic_comm.h"
#include "link/send_queue.h"
#include "link/serial_input.h"
#include "power/battery_alarms.h"
#include "power/battery_details.h"
#include "power/flight_mode_notice.h"
#include "report/device_report.h"
#include "resources/resource_ids.h"
#include "switches/macro_plugin.h"
#include "switches/switch_events.h"
#include "switches/switch_outputs.h"
#include "system/folders.h"
#include "system/language.h"
#include "system/message_box.h"
#include "system/numbers.h"
#include "system/tray_icons.h"
#include "system/window_requests.h"
#include "system/windows_version.h"

namespace veltra {
namespace {

static_assert(kFirstUserMessage == WM_USER && kFirstApplicationMessage == WM_APP);

struct WindowMessage {
  HWND window;
  UINT message;
  WPARAM wParam;
  LPARAM lParam;
};

// Empty: the default window procedure gives the result.
using Result = std::optional<LRESULT>;

// ---- the window's life ------------------------------------------------------------------------------------

// The shell tells with this message that it has started again and forgotten all icons; 0 when the
// registration failed.
UINT TaskbarCreatedMessage = 0;

Result OnCreate(const WindowMessage&) {
  TaskbarCreatedMessage = RegisterWindowMessageW(TEXT("TaskbarCreated"));
  return 0;
}

Result OnTaskbarCreated(const WindowMessage& m) {
  AddTrayIcons(m.window);
  return 0;
}

// A controller without its firmware is not left alone; says so when one is.
bool MustStay() {
  if (!Firmware().bootloader.IsRunning()) return false;
  ShowMessageBox(BoxKind::kUpdateRuns, Firmware().hFirmwareDlg, LoadResString(IDS_FIRMWARE_UPDATE_RUNS),
                 GetDeviceModelName(), MB_OK);
  return true;
}

Result OnClose(const WindowMessage& m) {
  if (HasAppState() && MustStay()) return 0;
  RemoveTrayIcons(m.window);
  DestroyWindow(m.window);
  return 0;
}

Result OnDestroy(const WindowMessage&) {
  PostQuitMessage(0);
  return 0;
}

// The reason that is shown meanwhile was given before.
Result OnQueryEndSession(const WindowMessage&) {
  if (Firmware().bootloader.IsRunning()) return FALSE;
  return {};
}

Result OnEndSession(const WindowMessage& m) {
  if (!m.wParam) return 0;
  RunShutdownSequence();
  PostQuitMessage(0);
  return 0;
}

// ---- copied data ------------------------------------------------------------------------------------------

struct CopiedDataHandler {
  Result result;
  void (*handle)(HWND sender, uint32_t tag, Bytes data);
};

constexpr RangeRow<CopiedDataHandler> kCopiedDataRows[] = {
    {kFirstInfraredRequest,
     kLastInfraredRequest,
     {1, [](HWND sender, uint32_t, Bytes data) { ForwardInfraredRequest(sender, data); }}},
    {kFirmwareUpdate, kFirmwareUpdate, {{}, [](HWND, uint32_t, Bytes data) { StartFirmwareUpdate(data); }}},
    {kInfraredCancel,
     kInfraredCancel,
     {1, [](HWND sender, uint32_t, Bytes data) { ForwardInfraredCancel(sender, data); }}},
    {kFirstIdentityUpdate,
     kLastIdentityUpdate,
     {{}, [](HWND, uint32_t tag, Bytes data) { UpdateIdentity(tag, data); }}},
};

Result OnCopyData(const WindowMessage& m) {
  const auto* data = reinterpret_cast<const COPYDATASTRUCT*>(m.lParam);
  if (!data) return {};
  Bytes payload;
  if (data->lpData) payload = {static_cast<const uint8_t*>(data->lpData), data->cbData};
  const auto* row = FindRow(kCopiedDataRows, data->dwData);
  if (!row) return {};
  row->handle.handle(reinterpret_cast<HWND>(m.wParam), static_cast<uint32_t>(data->dwData), payload);
  return row->handle.result;
}

// ---- tray icons -------------------------------------------------------------------------------------------

void OnIconMouse(const WindowMessage& m, WORD doubleClickCommand, TrayMenu menu) {
  if (m.lParam == WM_LBUTTONDBLCLK) SendMessageW(m.window, WM_COMMAND, doubleClickCommand, 0);
  if (m.lParam == WM_RBUTTONUP) ShowTrayMenu(m.window, menu);
}

Result OnPowerIcon(const WindowMessage& m) {
  OnIconMouse(m, IDC_OPEN_POWER_METER, TrayMenu::kPower);
  return {};
}

Result OnToolIcon(const WindowMessage& m) {
  OnIconMouse(m, IDC_OPTIONS, TrayMenu::kTool);
  return {};
}

// ---- menu commands ----------------------------------------------------------------------------------------

void ConfirmClose(HWND window) {
  if (MustStay()) return;
  const WideText question = LoadResString(IDS_CONFIRM_CLOSE);
  if (ShowMessageBox(BoxKind::kConfirmClose, window, question, GetDeviceModelName(), MB_YESNO) == IDYES)
    SendMessageW(window, WM_CLOSE, 0, 0);
}

void ShowBatteryDetails(HWND window) {
  ShowMessageBox(BoxKind::kBatteryDetails, window, BatteryDetailsText(), GetDeviceModelName(),
                 MB_OK | MB_ICONINFORMATION);
}

void ChooseLanguage(size_t index) {
  const auto& languages = System().Languages;
  if (index >= languages.size()) return;
  SetLanguage(languages[index].id);
  UnloadMacroLibrary();
  LoadMacroLibrary();
}

constexpr RangeRow<void (*)(HWND window, size_t index)> kCommandRows[] = {
    {IDC_CLOSE, IDC_CLOSE, [](HWND window, size_t) { ConfirmClose(window); }},
    {IDC_OPEN_POWER_METER, IDC_OPEN_POWER_METER, [](HWND, size_t) { OpenPowerMeter(); }},
    {IDC_OPTIONS, IDC_OPTIONS, [](HWND, size_t) { OpenOptionsDialog(); }},
    {IDC_BATTERY_INFO, IDC_BATTERY_INFO, [](HWND window, size_t) { ShowBatteryDetails(window); }},
    {IDC_FIRST_LANGUAGE, IDC_LAST_LANGUAGE, [](HWND, size_t index) { ChooseLanguage(index); }},
};

Result OnCommand(const WindowMessage& m) {
  const WORD command = LOWORD(m.wParam);
  if (const auto* row = FindRow(kCommandRows, command)) row->handle(m.window, command - row->first);
  return 0;
}

// ---- timers -----------------------------------------------------------------------------------------------

void OnBatteryTimer(UINT_PTR) {
  RepeatLostReleases();
  CheckBatteryAlarms();
}

constexpr RangeRow<void (*)(UINT_PTR timer)> kTimerRows[] = {
    {kBatteryTimer, kBatteryTimer, OnBatteryTimer},
    {kResumeTimer, kResumeTimer, [](UINT_PTR) { OnResumeTimer(); }},
    {kMiddleButtonTimer, kMiddleButtonTimer, OnLongPressTimer},
    {kFlightModeTimer, kFlightModeTimer, [](UINT_PTR) { OnFlightModeTimer(); }},
    {kTopButtonTimer, kTopButtonTimer, OnLongPressTimer},
    {kBottomButtonTimer, kBottomButtonTimer, OnLongPressTimer},
    {kCallProfileTimer, kCallProfileTimer, [](UINT_PTR) { OnCallProfileTimer(); }},
    {PORT_RETRY_TIMER, PORT_RETRY_TIMER, [](UINT_PTR) { OnPortRetryTimer(); }},
    {kSwitch1AcceptTimer, kSwitch2AcceptTimer, OnAcceptTimer},
};

Result OnTimer(const WindowMessage& m) {
  if (const auto* row = FindRow(kTimerRows, m.wParam)) row->handle(m.wParam);
  return 0;
}

// ---- power and devices ------------------------------------------------------------------------------------

Result OnPowerBroadcast(const WindowMessage& m) {
  OnPowerEvent(m.wParam);
  return 1;
}

// A sender may count the record too short for its name, or leave the name without an end.
WideView PortName(const DEV_BROADCAST_HDR& device) {
  constexpr size_t kNameAt = offsetof(DEV_BROADCAST_PORT_W, dbcp_name);
  if (device.dbch_size <= kNameAt) return {};
  const WCHAR* begin = reinterpret_cast<const DEV_BROADCAST_PORT_W&>(device).dbcp_name;
  const WideView name(begin, (device.dbch_size - kNameAt) / sizeof(WCHAR));
  return name.substr(0, name.find(WCHAR{0}));
}

Result OnDeviceChange(const WindowMessage& m) {
  Trace(TEXT("OnDeviceChange %08X\r\n"), static_cast<DWORD>(m.wParam));
  if (m.wParam != DBT_DEVICEARRIVAL && m.wParam != DBT_DEVICEREMOVECOMPLETE) return 1;
  const auto* device = reinterpret_cast<const DEV_BROADCAST_HDR*>(m.lParam);
  if (!device) return 1;
  const bool arrived = m.wParam == DBT_DEVICEARRIVAL;
  if (!IsWindows7OrLater()) {
    Trace(arrived ? TEXT("Arrival of type %d\r\n") : TEXT("Removal of type %d\r\n"), device->dbch_devicetype);
    return 1;
  }
  Trace(TEXT("win devtype %d"), device->dbch_devicetype);
  if (device->dbch_devicetype != DBT_DEVTYP_PORT) return 1;
  OnPicPortChange(UpperAscii(PortName(*device)), arrived);
  return 1;
}

Result OnSessionChange(const WindowMessage& m) {
  if (m.wParam == WTS_SESSION_LOCK) NoteLockedScreen();
  if (m.wParam == WTS_SESSION_UNLOCK) ReleaseAfterLock();
  return {};
}

// ---- the controller ---------------------------------------------------------------------------------------

Result ReceivePicByte(const WindowMessage& m) {
  OnPicByte(static_cast<uint8_t>(m.wParam));
  return {};
}

Result ReceivePicLineLost(const WindowMessage&) {
  OnPicLineLost();
  return 0;
}

Result ReceivePicLineOpened(const WindowMessage& m) {
  OnPicLineOpened(m.wParam);
  return 0;
}

Result OnQueryPicFirmware(const WindowMessage&) {
  constexpr int kOldestWanted = 95;
  return std::atoi(Link().identity.firmwareVersionText.c_str()) >= kOldestWanted ? 1 : 0;
}

Result OnFirmwareFileRequest(const WindowMessage&) {
  ChooseFirmwareFile();
  return {};
}

Result OnStatusLedRequest(const WindowMessage& m) {
  constexpr WPARAM kLastLedState = 3;
  SendText(std::string("SetStatusLed=").append(std::to_string(m.wParam <= kLastLedState ? m.wParam : 0)));
  return {};
}

// ---- requests of the maker's applications -----------------------------------------------------------------

void TraceRequest(const WindowMessage& m) {
  Trace(TEXT("Kavo3 tool: device operation %d %d invoked"), static_cast<int32_t>(m.wParam),
        static_cast<int32_t>(m.lParam));
}

Result RunOperation(const WindowMessage& m) {
  TraceRequest(m);
  DeviceOperation(static_cast<int32_t>(m.lParam), static_cast<int32_t>(m.wParam - kFirstOperationRequest));
  return {};
}

Result TellSpeakerVolume(const WindowMessage&) {
  Trace(TEXT("Kavo3 tool: GetSpeakerVolume invoked"));
  return 0x10000 + (Board().audio.SpeakerVol & 0xFFFF);
}

constexpr RangeRow<Result (*)(const WindowMessage&)> kRequestRows[] = {
    {kFirstOperationRequest, kPowerSourceRequest - 1, RunOperation},
    {kPowerSourceRequest, kPowerSourceRequest,
     [](const WindowMessage&) -> Result { return static_cast<LRESULT>(Power().battery.GetPowerSource()); }},
    {kCapacityRequest, kCapacityRequest,
     [](const WindowMessage&) -> Result { return Power().battery.capacity; }},
    {kCapacityRequest + 1, kLastOperationRequest, RunOperation},
    {kSpeakerVolumeRequest, kSpeakerVolumeRequest, TellSpeakerVolume},
};

Result OnDeviceToolRequest(const WindowMessage& m) {
  if (const auto* row = FindRow(kRequestRows, m.wParam)) return row->handle(m);
  TraceRequest(m);
  return {};
}

Result OnDeviceReportRequest(const WindowMessage& m) {
  SendDeviceReport(reinterpret_cast<HWND>(m.lParam), m.wParam);
  return {};
}

Result OnCodecStatusQuery(const WindowMessage&) {
  return Board().audio.codecReady ? 1 : 2;
}

// ---- the table --------------------------------------------------------------------------------------------

struct MessageRow {
  UINT message;
  Result (*handle)(const WindowMessage&);
};

constexpr MessageRow kMessageRows[] = {
    {WM_CREATE, OnCreate},
    {WM_CLOSE, OnClose},
    {WM_DESTROY, OnDestroy},
    {WM_QUERYENDSESSION, OnQueryEndSession},
    {WM_ENDSESSION, OnEndSession},
    {WM_COPYDATA, OnCopyData},
    {WM_COMMAND, OnCommand},
    {WM_TIMER, OnTimer},
    {WM_POWERBROADCAST, OnPowerBroadcast},
    {WM_DEVICECHANGE, OnDeviceChange},
    {WM_WTSSESSION_CHANGE, OnSessionChange},
    {kPowerIconMessage, OnPowerIcon},
    {kToolIconMessage, OnToolIcon},
    {WM_PIC_BYTE, ReceivePicByte},
    {WM_PIC_LINE_LOST, ReceivePicLineLost},
    {WM_PIC_LINE_OPENED, ReceivePicLineOpened},
    {WM_QUERY_PIC_FIRMWARE, OnQueryPicFirmware},
    {kDeviceToolRequest, OnDeviceToolRequest},
    {kDeviceReportRequest, OnDeviceReportRequest},
    {kFirmwareFileRequest, OnFirmwareFileRequest},
    {kStatusLedRequest, OnStatusLedRequest},
    {kCodecStatusQuery, OnCodecStatusQuery},
};
static_assert(AreApart(kCopiedDataRows) && AreApart(kCommandRows) && AreApart(kTimerRows) &&
              AreApart(kRequestRows) && std::ranges::all_of(kMessageRows, [](const MessageRow& row) {
                return std::ranges::count(kMessageRows, row.message, &MessageRow::message) == 1;
              }));

Result Handle(const WindowMessage& m) {
  const bool endsWindow = m.message == WM_CLOSE || m.message == WM_DESTROY;
  if (!HasAppState() && !endsWindow) return {};  // the session has ended
  if (TaskbarCreatedMessage != 0 && m.message == TaskbarCreatedMessage) return OnTaskbarCreated(m);
  for (const MessageRow& row : kMessageRows)
    if (row.message == m.message) return row.handle(m);
  return {};
}

// Whether programs send it, not Windows.
bool IsOfPrograms(UINT message) {
  return message >= WM_USER || message == WM_COPYDATA || message == WM_COMMAND;
}

}  // namespace

void OpenToOthers(HWND window) {
  std::vector<UINT> admitted = {TaskbarCreatedMessage};
  for (const MessageRow& row : kMessageRows)
    if (IsOfPrograms(row.message)) admitted.push_back(row.message);
  AdmitFromLowerRights(window, admitted);
  AskForSuspendAndResume(window);
  AskForLockAndUnlock(window);
}

LRESULT CALLBACK MainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const Result result = CalledByWindows(TEXT("main window"), message, Result(), [&] {
    return Handle({window, message, wParam, lParam});
  });
  return result ? *result : DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace veltra
