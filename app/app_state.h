// The one object that owns everything that lives longer than a call. The main thread alone touches it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "app/diagnostic_log.h"
#include "app/tray_state.h"
#include "base/text.h"
#include "board/audio_settings.h"
#include "board/board_library.h"
#include "firmware/bootloader.h"
#include "link/device_identity.h"
#include "link/link_state.h"
#include "link/serial_input.h"
#include "power/alarm_decision.h"
#include "power/battery_status.h"
#include "switches/button_action.h"
#include "switches/joystick_library.h"
#include "switches/macro_library.h"
#include "switches/mouse_filter_library.h"
#include "switches/switch_state.h"

namespace veltra {

struct LanguageEntry {
  WideText name;  // in its own language; also part of file names
  LANGID id = 0;
};

struct AppState {
  AppState();
  AppState(const AppState&) = delete;
  AppState& operator=(const AppState&) = delete;

  // Process and windows.
  HINSTANCE hInstance = nullptr;
  HWND hMainWnd = nullptr;
  TrayState tray;
  bool PowerMeterOpen = false;  // while the dialog is open, so that no second one opens
  bool OptionsOpen = false;
  HWND hFirmwareDlg = nullptr;
  UINT SwitchInputMessage = 0;  // the registered message "Veltra_SwitchInput"; 0 when the registration failed

  // User settings, kept in the registry together with those of `battery` and `audio`.
  int32_t Sw1Start = 0;  // ms until switch 1 starts the tablet, 0 never
  bool SwClicks = false;
  int32_t Sw1CmdVal = 0;
  int32_t Sw2CmdVal = 0;
  int32_t WakeupDelay = 1000;   // ms between the resume notification and the resume sequence
  int32_t StartupDelay = 3000;  // ms before the start-up sequence
  bool AllowEscape = true;
  bool DisableUSBBack = false;
  bool DisableUSBBottom = false;
  bool EnableFlightMode = false;
  bool EnableWLAN = true;
  bool EnableBluetooth = true;
  bool EnableMobilePhone = true;
  bool TB4RevSw = false;
  bool LexoraRevSw = false;
  LANGID CurrentLangID = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_UK);

  // Machine settings.
  int32_t PicPortNumber = 2;

  // Virtual joystick and mouse filter.
  UINT VJoyDeviceId = 1;
  bool VJoyAcquired = false;
  JoystickLibrary joystick;
  MouseFilterLibrary mouseFilter;

  // Controller link.
  std::shared_ptr<VeltraFramework::CSerialInput> picPort;  // null while the port is closed
  LinkReceiver receiver;
  PicQueue picQueue;
  std::vector<uint8_t> irCode;  // the last infrared recording

  DeviceIdentity identity;
  BatteryStatus battery;
  int32_t lowAlarmLevel = kAlarmArmed;  // capacity of the last low-battery alarm
  AudioSettings audio;
  BoardLibrary board;
  uint8_t ExpanderPortA = 0;  // what the outputs of the I/O expander should be
  uint8_t ExpanderPortB = 0;
  Bootloader bootloader;

  // Switches.
  bool escHeld = false;  // a long press of the middle, top or bottom side button is pending
  bool fn1Held = false;
  bool fn2Held = false;
  HeldOutputs heldOutputs;
  SwitchIndicator switchIndicator;

  // Side buttons.
  ButtonActions buttonActions;                 // what a press of each does
  std::shared_ptr<const MacroLibrary> macros;  // null without a plug-in; who is at work in it holds it too

  bool Suspended = false;  // from the suspend notification until the resume has been handled

  std::vector<LanguageEntry> Languages;

  WideText dataFolder;  // with a trailing backslash
  DiagnosticLog log;
};

// The state, created at the first call.
AppState& GetAppState();
[[nodiscard]] bool HasAppState();

// Ends the state; the next GetAppState() would create a new one. Code that is still at work with it up the
// stack goes on with the old one, when it holds it by KeepAppState().
void DestroyAppState();
[[nodiscard]] std::shared_ptr<AppState> KeepAppState();

}  // namespace veltra
