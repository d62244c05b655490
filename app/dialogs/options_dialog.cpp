#include "app/dialogs/options_dialog.h"

#include <windows.h>

#include <commctrl.h>

#include "app/app_state.h"
#include "app/device_operations.h"
#include "app/dialogs/control_names.h"
#include "app/dialogs/dialog_items.h"
#include "app/dialogs/options_lists.h"
#include "app/dialogs/options_rows.h"
#include "app/settings_store.h"
#include "board/volume.h"
#include "resources/resource_ids.h"
#include "switches/switch_indicator.h"
#include "switches/switch_outputs.h"
#include "system/language.h"
#include "system/numbers.h"
#include "system/windows_version.h"

namespace veltra {
namespace {

constexpr ItemLabel kLabels[] = {
    {IDO_FLIGHT_MODE, IDS_FLIGHT_MODE},
    {IDO_MOBILE_PHONE, IDS_MOBILE_PHONE},
    {IDO_DISABLE_USB_BACK, IDS_DISABLE_USB_BACK},
    {IDO_DISABLE_USB_BOTTOM, IDS_DISABLE_USB_BOTTOM},
    {IDO_SPEAKERS_LABEL, IDS_SPEAKERS},
    {IDO_SPEAKERS_ON, IDS_ON},
    {IDO_SPEAKERS_OFF, IDS_OFF},
    {IDO_SPEAKER_VOLUME_LABEL, IDS_SPEAKER_VOLUME},
    {IDO_HEADPHONES_LABEL, IDS_HEADPHONES},
    {IDO_HEADPHONES_ON, IDS_ON},
    {IDO_HEADPHONES_OFF, IDS_OFF},
    {IDO_MICROPHONE_LABEL, IDS_MICROPHONE},
    {IDO_MICROPHONE_ON, IDS_ON},
    {IDO_MICROPHONE_OFF, IDS_OFF},
    {IDO_MICROPHONE_VOLUME_LABEL, IDS_MICROPHONE_VOLUME},
    {IDO_SWITCHES_GROUP, IDS_SWITCHES},
    {IDO_SWITCH_1_STARTS_LABEL, IDS_SWITCH_1_STARTS},
    {IDO_SWITCH_1_LABEL, IDS_SWITCH_1},
    {IDO_SWITCH_2_LABEL, IDS_SWITCH_2},
    {IDO_PIC_VERSION_LABEL, IDS_PIC_VERSION},
    {IDO_DEVICE_VERSION_LABEL, IDS_DEVICE_VERSION},
    {IDO_SIDE_BUTTONS_GROUP, IDS_SIDE_BUTTONS},
    {IDO_MIDDLE_LABEL, IDS_BUTTON_MIDDLE},
    {IDO_ROW_LABEL_0, IDS_BUTTON_TOP_SHORT},
    {IDO_ROW_LABEL_1, IDS_BUTTON_BOTTOM_SHORT},
    {IDO_ROW_LABEL_2, IDS_BUTTON_TOP_LONG},
    {IDO_ROW_LABEL_3, IDS_BUTTON_BOTTOM_LONG},
    {IDOK, IDS_OK},
};

// ---- settings with a check box ----------------------------------------------------------------------------

struct CheckBox {
  int id;
  bool PowerState::*setting;
};
constexpr CheckBox kUsbPower[] = {{IDO_DISABLE_USB_BACK, &PowerState::DisableUSBBack},
                                  {IDO_DISABLE_USB_BOTTOM, &PowerState::DisableUSBBottom}};

struct Radio {
  int id;
  bool PowerState::*setting;
  void (*store)(bool on);  // and apply
};
constexpr Radio kRadios[] = {{IDO_WLAN, &PowerState::EnableWLAN, SetWlanEnabled},
                             {IDO_BLUETOOTH, &PowerState::EnableBluetooth, SetBluetoothEnabled},
                             {IDO_MOBILE_PHONE, &PowerState::EnableMobilePhone, SetMobilePhoneEnabled}};

void EnableRadios(HWND dialog) {
  const bool flightMode = IsItemChecked(dialog, IDO_FLIGHT_MODE);
  for (const Radio& radio : kRadios) EnableItem(dialog, radio.id, !flightMode);
}

void InitCheckBoxes(HWND dialog) {
  for (const CheckBox& box : kUsbPower) CheckItem(dialog, box.id, Power().*box.setting);
  for (const Radio& radio : kRadios) CheckItem(dialog, radio.id, Power().*radio.setting);
  CheckItem(dialog, IDO_FLIGHT_MODE, Power().EnableFlightMode);
  EnableRadios(dialog);
}

void StoreCheckBoxes(HWND dialog) {
  for (const CheckBox& box : kUsbPower) Power().*box.setting = IsItemChecked(dialog, box.id);
  Power().EnableFlightMode = IsItemChecked(dialog, IDO_FLIGHT_MODE);
  if (Power().EnableFlightMode) return EnterFlightMode();
  for (const Radio& radio : kRadios) radio.store(IsItemChecked(dialog, radio.id));
}

// ---- what acts at once ------------------------------------------------------------------------------------

struct AudioButton {
  int id;
  DeviceOperationNumber operation;
};
constexpr AudioButton kAudioButtons[] = {
    {IDO_SPEAKERS_ON, kSpeakersOn},     {IDO_SPEAKERS_OFF, kSpeakersOff},
    {IDO_HEADPHONES_ON, kHeadphonesOn}, {IDO_HEADPHONES_OFF, kHeadphonesOff},
    {IDO_MICROPHONE_ON, kMicrophoneOn}, {IDO_MICROPHONE_OFF, kMicrophoneOff},
};

constexpr int32_t kSpeakerStep = 10;  // of the volume, for one position of the slider

struct Slider {
  int id;
  int highest;  // the lowest is 1
  int32_t (*position)(const AudioSettings& audio);
  void (*apply)(int position);
};
constexpr Slider kSliders[] = {
    {IDO_SPEAKER_VOLUME, 10, [](const AudioSettings& audio) { return audio.SpeakerVol / kSpeakerStep; },
     [](int position) { SetSpeakerVolume(position * kSpeakerStep); }},
    {IDO_MICROPHONE_VOLUME, 9, [](const AudioSettings& audio) { return audio.MicrophoneVol; },
     SetMicrophoneVolume},
};

void InitSliders(HWND dialog) {
  for (const Slider& slider : kSliders) {
    SendDlgItemMessageW(dialog, slider.id, TBM_SETRANGE, TRUE, MAKELPARAM(1, slider.highest));
    SendDlgItemMessageW(dialog, slider.id, TBM_SETPOS, TRUE, slider.position(Board().audio));
  }
}

void OnScroll(HWND dialog, WPARAM wParam, LPARAM lParam) {
  const WORD code = LOWORD(wParam);
  const HWND trackbar = reinterpret_cast<HWND>(lParam);
  if (code != TB_THUMBTRACK && code != TB_ENDTRACK) return;
  for (const Slider& slider : kSliders)
    if (GetDlgItem(dialog, slider.id) == trackbar) slider.apply(GetSliderPosition(dialog, slider.id));
}

void OnButton(WORD id) {
  for (const AudioButton& button : kAudioButtons)
    if (button.id == id) DeviceOperation(0, button.operation);
}

// ---- beginning and end ------------------------------------------------------------------------------------

void Centre(HWND dialog) {
  RECT rect = {};
  GetWindowRect(dialog, &rect);
  const int left = (GetSystemMetrics(SM_CXSCREEN) - (rect.right - rect.left)) / 2;
  const int top = (GetSystemMetrics(SM_CYSCREEN) - (rect.bottom - rect.top)) / 2;
  SetWindowPos(dialog, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
}

void OnInit(HWND dialog, WPARAM, LPARAM) {
  Switches().switchIndicator.dialogWindow = dialog;
  SetWindowPos(dialog, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
  Centre(dialog);
  InitCheckBoxes(dialog);
  InitSliders(dialog);
  InitSwitchLists(dialog);
  InitButtonRows(dialog);
  SetWindowTextW(dialog, LoadResString(IDS_OPTIONS).c_str());
  SetLabels(dialog, kLabels);
  SetItemText(dialog, IDO_PIC_VERSION, Widen(Link().identity.firmwareVersionText));
  SetItemText(dialog, IDO_DEVICE_VERSION, GetOwnFileVersion());
  NameControls(dialog);
}

void End(HWND dialog, INT_PTR result) {
  Switches().switchIndicator.serviceCount = 0;
  EndDialog(dialog, result);
}

void OnOk(HWND dialog) {
  CollectButtonRows(dialog);
  StoreSwitchLists(dialog);
  StoreCheckBoxes(dialog);
  SaveSettings();
  End(dialog, IDOK);
}

void OnPicVersionDoubleClick(HWND dialog) {
  if (!MayStartFirmwareUpdate()) return;
  End(dialog, IDCANCEL);
  PostMessageW(MainWindow(), kFirmwareFileRequest, 0, 0);
}

// ---- messages ---------------------------------------------------------------------------------------------

struct CommandRow {
  int first;  // controls of that row and the ones after it
  int count;
  WORD code;
  void (*handle)(HWND dialog, int index);
};
constexpr CommandRow kCommandRows[] = {
    {IDOK, 1, BN_CLICKED, [](HWND dialog, int) { OnOk(dialog); }},
    {IDCANCEL, 1, BN_CLICKED, [](HWND dialog, int) { End(dialog, IDCANCEL); }},
    {IDO_FLIGHT_MODE, 1, BN_CLICKED, [](HWND dialog, int) { EnableRadios(dialog); }},
    {IDO_INDICATOR, 1, STN_DBLCLK, [](HWND dialog, int) { OnIndicatorDoubleClick(dialog); }},
    {IDO_PIC_VERSION, 1, STN_DBLCLK, [](HWND dialog, int) { OnPicVersionDoubleClick(dialog); }},
    {IDO_ROW_TYPE_0, kOptionsRows, CBN_SELCHANGE, OnActionTypeChange},
    {IDO_ROW_BROWSE_0, kOptionsRows, BN_CLICKED, OnRowBrowse},
};

void OnCommand(HWND dialog, WPARAM wParam, LPARAM) {
  const WORD id = LOWORD(wParam);
  const WORD code = HIWORD(wParam);
  if (code == BN_CLICKED) OnButton(id);
  for (const CommandRow& row : kCommandRows)
    if (code == row.code && id >= row.first && id < row.first + row.count)
      return row.handle(dialog, id - row.first);
}

constexpr DialogRow kDialogRows[] = {
    {WM_INITDIALOG, OnInit},
    {WM_PAINT, [](HWND dialog, WPARAM, LPARAM) { PaintSwitchIndicator(dialog); }},
    {WM_HSCROLL, OnScroll},
    {WM_COMMAND, OnCommand},
    {WM_CLOSE, [](HWND dialog, WPARAM, LPARAM) { EndDialog(dialog, 0); }},
    {WM_DESTROY, [](HWND dialog, WPARAM, LPARAM) { ForgetControlNames(dialog); }},
};

INT_PTR CALLBACK OptionsProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  return HandleDialogMessage(TEXT("options dialog"), kDialogRows, dialog, message, wParam, lParam);
}

}  // namespace

void OpenOptionsDialog() {
  AppState& app = App();
  if (app.OptionsOpen) return;
  ReleaseHeldOutputs();
  app.OptionsOpen = true;
  RunDialog(TEXT("KAVOOPTIONS"), OptionsProcedure, reinterpret_cast<LPARAM>(&Switches().switchIndicator));
  Switches().switchIndicator.dialogWindow = nullptr;
  app.OptionsOpen = false;
}

}  // namespace veltra
