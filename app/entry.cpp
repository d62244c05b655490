// The program's entry: one instance, a hidden window, the message loop.
#include <windows.h>

#include <commctrl.h>

#include <memory>
#include <utility>

#include "app/app_state.h"
#include "app/dialogs/firmware_dialog.h"
#include "app/main_window.h"
#include "app/settings_store.h"
#include "app/startup.h"
#include "base/called_by_windows.h"
#include "base/command_line.h"
#include "base/debug_output.h"
#include "base/handles.h"
#include "power/outside_tools.h"
#include "resources/resource_ids.h"
#include "switches/button_profile.h"
#include "switches/joystick.h"
#include "switches/macro_plugin.h"
#include "switches/switch_events.h"
#include "system/library_binding.h"
#include "system/tray_icons.h"

namespace veltra {
namespace {

constexpr int kAnotherInstanceRuns = 6;  // exit code

// The running instance opens its power meter, when it has come up.
void CallRunningInstance() {
  AllowSetForegroundWindow(ASFW_ANY);  // its dialog comes to the front
  if (const HWND running = FindWindowW(kMainWindowClass, nullptr))
    PostMessageW(running, WM_COMMAND, IDC_OPEN_POWER_METER, 0);
}

void RegisterMainWindowClass(HINSTANCE instance) {
  WNDCLASSEXW windowClass = {};
  windowClass.cbSize = sizeof(windowClass);
  windowClass.style = CS_HREDRAW | CS_VREDRAW;
  windowClass.lpfnWndProc = MainWindowProc;
  windowClass.hInstance = instance;
  windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
  windowClass.lpszClassName = kMainWindowClass;
  RegisterClassExW(&windowClass);
}

HWND CreateHiddenWindow(const WCHAR* windowClass) {
  return CreateWindowExW(WS_EX_APPWINDOW, windowClass, kMainWindowClass, WS_OVERLAPPEDWINDOW, 0, 0, 0, 0,
                         nullptr, nullptr, System().hInstance, nullptr);
}

// When its class could not be registered the window borrows one of Windows: other programs do not find it
// then, but the switches work.
bool TryToCreateMainWindow() {
  HWND& window = System().hMainWnd;
  window = CreateHiddenWindow(kMainWindowClass);
  if (window) return true;
  window = CreateHiddenWindow(TEXT("STATIC"));
  if (!window) return false;
  SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(MainWindowProc));
  return true;
}

// Without a window the tool would run and hear no switch.
void CreateMainWindow() {
  constexpr DWORD kRetryMs = 1000;
  while (!TryToCreateMainWindow()) Sleep(kRetryMs);
  OpenToOthers(MainWindow());
}

int RunMessageLoop() {
  MSG message = {};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return static_cast<int>(message.wParam);
}

// A negative delay would be an endless one.
void WaitBeforeStart() {
  const int32_t delay = App().StartupDelay;
  if (delay > 0) Sleep(static_cast<DWORD>(delay));
}

// It opens when the message loop runs.
void PostFirstDialog(const CommandLine& options) {
  if (options.silent) return;
  PostMessageW(MainWindow(), WM_COMMAND, options.openOptions ? IDC_OPTIONS : IDC_OPEN_POWER_METER, 0);
}

void BringUp(const CommandLine& options) {
  CreateMainWindow();
  LoadSettings();
  AddTrayIcons(MainWindow());
  LoadProfile(CurrentProfilePath());
  LoadMacroLibrary();
  WaitBeforeStart();
  RunStartupSequence(false);
  PostFirstDialog(options);
  CreateFirmwareDialog();
}

int RunTool(HINSTANCE instance) {
  auto com = std::make_shared<ComLibrary>();
  Trace(TEXT("Veltra Device tool started"));
  GetAppState().system.hInstance = instance;
  System().com = std::move(com);
  StartVirtualJoystick();
  RegisterMainWindowClass(instance);
  InitCommonControls();

  const CommandLine options = ParseCommandLine(GetCommandLineW());
  for (const WideText& refused : options.refused) Trace(TEXT("%s"), refused);
  if (options.help) {
    MessageBoxW(nullptr, TEXT("Hoe gebruiken?"), TEXT("Help"), MB_OK);
    StopVirtualJoystick();
    DestroyAppState();
    return 0;
  }

  CheckPowerFlags();
  CalledByWindows(TEXT("entry"), 0, 0, [&] {
    BringUp(options);
    return 0;
  });
  const int exitCode = RunMessageLoop();

  if (HasAppState()) {  // else the session has ended, and the shut-down has run
    ForgetHeldSwitches();
    StopVirtualJoystick();
    RunShutdownSequence();
  }
  return exitCode;
}

}  // namespace
}  // namespace veltra

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int) {
  veltra::LoadOnlyFromSafePlaces();
  const veltra::UniqueKernelObject singleInstance(CreateMutexW(nullptr, TRUE, TEXT("VeltraInternal")));
  const DWORD error = GetLastError();
  // The mutex of a copy that runs with higher rights is not even opened.
  if (error == ERROR_ALREADY_EXISTS || (!singleInstance && error == ERROR_ACCESS_DENIED)) {
    veltra::CallRunningInstance();
    return veltra::kAnotherInstanceRuns;
  }
  return veltra::RunTool(instance);
}
