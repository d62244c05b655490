#include "app/dialogs/firmware_dialog.h"

#include <commctrl.h>
#include <commdlg.h>

#include <cstring>

#include "app/app_state.h"
#include "app/dialogs/dialog_items.h"
#include "app/dialogs/file_box.h"
#include "resources/resource_ids.h"
#include "switches/switch_events.h"
#include "system/language.h"
#include "system/numbers.h"
#include "system/power_off.h"

namespace veltra {
namespace {

constexpr const WCHAR* kStartText =
    TEXT("Performing firmware update.\n\nPlease wait....\n\nDo not turn off your device!");
constexpr const WCHAR* kNoStartText =
    TEXT("Could not start firmware update.\n\nTurn off the device and try again!");
constexpr const WCHAR* kSuccessText = TEXT(
    "Firmware was updated successfully. Windows will exit after you press OK.\r\n\r\n"
    "Press the reset-button when the screen turns black.");
constexpr const WCHAR* kFailureText = TEXT(
    "Could not update firmware (%s %d)\n\nDevice should be restarted.\nPlease retry the update after "
    "restart!");

void ShowRunning(HWND dialog) {
  SetDlgItemTextW(dialog, IDC_FIRMWARE_TEXT, kStartText);
  EnableWindow(GetDlgItem(dialog, IDOK), FALSE);
}

void ShowOnTop(HWND dialog) {
  ShowWindow(dialog, SW_SHOW);
  SetWindowPos(dialog, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
}

void ShowEnd(HWND dialog, const WideText& text) {
  const HWND ok = GetDlgItem(dialog, IDOK);
  EnableWindow(ok, TRUE);
  SetFocus(ok);  // it lost the keyboard when it was disabled
  SetDlgItemTextW(dialog, IDC_FIRMWARE_TEXT, text.c_str());
}

void OnProgress(HWND dialog, WPARAM progress, LPARAM lParam) {
  const auto detail = static_cast<int32_t>(lParam);
  if (!IsWindowVisible(dialog)) ShowOnTop(dialog);  // the answer came after OK
  switch (static_cast<BootProgress>(progress)) {
    case BootProgress::kFinished:
      return ShowEnd(dialog, kSuccessText);
    case BootProgress::kTimeout:
      return ShowEnd(dialog, FormatText(kFailureText, TEXT("time-out"), detail));
    case BootProgress::kError:
      return ShowEnd(dialog, FormatText(kFailureText, TEXT("error"), detail));
    case BootProgress::kStepAnswered:
      if (Firmware().bootloader.IsRunning()) ShowRunning(dialog);  // perhaps after a time-out
      SendDlgItemMessageW(dialog, IDC_FIRMWARE_PROGRESS, PBM_STEPIT, 0, 0);
  }
}

void OnCommand(HWND dialog, WPARAM wParam, LPARAM) {
  if (LOWORD(wParam) != IDOK) return;
  ShowWindow(dialog, SW_HIDE);
  PowerOffSystem(EWX_SHUTDOWN | EWX_POWEROFF | EWX_FORCEIFHUNG, SHTDN_REASON_FLAG_PLANNED,
                 TEXT("OK in the Firmware dialog"));
}

constexpr DialogRow kDialogRows[] = {
    {WM_FIRMWARE_PROGRESS, OnProgress},
    {WM_COMMAND, OnCommand},
};

INT_PTR CALLBACK FirmwareProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  return HandleDialogMessage(TEXT("firmware dialog"), kDialogRows, dialog, message, wParam, lParam);
}

}  // namespace

void CreateFirmwareDialog() {
  const Bytes resource = FindLocalResource(RT_DIALOG, IDD_FIRMWARE);
  if (resource.empty()) return;
  Firmware().hFirmwareDlg =
      CreateDialogIndirectParamW(System().hInstance, reinterpret_cast<LPCDLGTEMPLATEW>(resource.data()),
                                 MainWindow(), FirmwareProcedure, 0);
}

void ChooseFirmwareFile() {
  WCHAR path[520] = {};
  OPENFILENAMEW box = {};
  box.lStructSize = sizeof(box);
  box.hwndOwner = MainWindow();
  box.lpstrFilter = TEXT("Firmware update files\0*.hex\0");
  box.lpstrDefExt = TEXT("hex");
  box.lpstrFile = path;
  box.nMaxFile = static_cast<DWORD>(std::size(path));
  box.Flags = OFN_EXPLORER | OFN_PATHMUSTEXIST;
  if (AskForFile(box)) StartFirmwareUpdate(WideText(path));
}

void StartFirmwareUpdate(const WideText& path) {
  Log().WriteDetail(TEXT("copydata"), path);
  if (Firmware().bootloader.IsRunning())
    return Log().WriteError(kFirmwareLogTag, TEXT("refused, another one runs: ") + path);
  const HWND dialog = Firmware().hFirmwareDlg;
  if (!dialog) return Log().WriteError(kFirmwareLogTag, TEXT("refused, its dialog is not there: ") + path);
  ShowOnTop(dialog);
  if (Power().battery.IsCritical()) {
    Log().WriteError(kFirmwareLogTag, TEXT("refused, ") + Power().battery.Describe() + TEXT(": ") + path);
    return ShowEnd(dialog, kNoStartText);
  }
  ShowRunning(dialog);
  ForgetHeldSwitches();  // the bootloader tells of no release
  const std::optional<uint32_t> stepCount = Firmware().bootloader.Start(path);
  if (!stepCount) return ShowEnd(dialog, kNoStartText);
  SendDlgItemMessageW(dialog, IDC_FIRMWARE_PROGRESS, PBM_SETRANGE, 0, MAKELPARAM(0, *stepCount));
  SendDlgItemMessageW(dialog, IDC_FIRMWARE_PROGRESS, PBM_SETSTEP, 1, 0);
}

void StartFirmwareUpdate(Bytes copiedPath) {
  WideText path(copiedPath.size() / sizeof(WCHAR), 0);  // the bytes may lie at an odd address
  if (!path.empty()) std::memcpy(path.data(), copiedPath.data(), path.size() * sizeof(WCHAR));
  StartFirmwareUpdate(path.substr(0, path.find(WideChar{0})));
}

}  // namespace veltra
