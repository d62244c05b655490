// The machine behind the platform adaptation layer: what tests, the simulator and the console see of the
// computer on which the tool believes it runs. Nothing in the tool itself includes this file.
//
// One Machine at a time. Creating one resets the layer; destroying it ends a program that still runs: every
// wait fails, message loops see WM_QUIT, message boxes return IDCANCEL, and when the entry has returned its
// other threads and its handles go, as with a process. A program that does not return within ten seconds ends
// the test with a message.
//
// Threads. The program runs on its own thread; the caller's thread is the "outside". With virtual time
// exactly one of them runs at any moment and they change only where the program waits, so that runs are
// deterministic: the outside calls Advance() of the clock, the program runs until it waits beyond that time,
// Advance() returns. With wall time all of them run freely.
//
// Events. What hardware and people do at a given time is an event: a function that runs when the clock
// reaches it. In virtual time the outside may also touch the machine directly between two calls of Advance().
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <windows.h>

#include "pal/devices/playback.h"
#include "pal/devices/serial_ports.h"
#include "pal/kernel/clock.h"
#include "pal/kernel/modules.h"
#include "pal/kernel/windows_system.h"
#include "pal/machine/effects.h"
#include "pal/resources/resource_table.h"
#include "pal/shell/menus.h"
#include "pal/shell/message_boxes.h"
#include "pal/shell/notification_area.h"
#include "pal/store/disk.h"
#include "pal/store/registry.h"
#include "pal/windows/desktop.h"

namespace pal {

struct State;  // the inside, see state.h

class Machine {
  std::unique_ptr<State> state_;

 public:
  explicit Machine(Clock clock = Clock::kVirtual);
  ~Machine();
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  // The parts. What stands in them "for the calls of Windows" is no matter of the outside.
  MachineClock& clock;
  Desktop& desktop;
  MessageBoxes& boxes;
  Menus& menus;
  NotificationArea& tray;
  Disk& disk;
  Registry& registry;
  ResourceTable& resources;
  Modules& modules;
  SerialPorts& serial;
  Playback& playback;
  WindowsSystem& system;

  // ---- the program --------------------------------------------------------------------------------------
  using EntryPoint = int(WINAPI*)(HINSTANCE, HINSTANCE, PWSTR, int);
  // Starts the program on its own thread; it begins to run with the next Advance(). `commandLine` is what
  // GetCommandLineW returns, program name included. One program at a time; after it ended another may start.
  void StartProgram(EntryPoint entry, std::u16string commandLine);
  void StartProgram(std::function<int()> entry);      // for contract tests
  [[nodiscard]] std::optional<int> ExitCode() const;  // empty while it runs
  // What the program holds now, for leak checks: handles by kind ("event", "mutex", "file", "serial", "key",
  // "thread handle"), "window", "timer", "menu", "icon" (loaded pictures),
  // "brush", "com object", and "thread": those that run beside the main thread.
  [[nodiscard]] int CountOpen(std::string_view kind) const;
  [[nodiscard]] size_t QueuedMessages() const;  // posted messages that wait for the program's main thread

  // ---- failures -----------------------------------------------------------------------------------------
  // The next `times` calls of the function of that name ("RegisterClassExW", "CreateThread", ...) fail with
  // that last error. `skip` calls succeed first.
  void Fail(std::string function, int times, DWORD lastError, int skip = 0);
  void FailNoMore();

  // ---- effects ------------------------------------------------------------------------------------------
  // Everything that the program did to the machine, in order. With wall time look at it only where the
  // program does not run: in the condition of AdvanceUntil, in a listener, or when the program has ended.
  [[nodiscard]] const std::vector<Effect>& Effects() const;
  // Those so far are gone, for whoever watches a long time.
  void ForgetEffects();
  // The listener is called at each effect, on the thread that has it, and must not wait.
  void OnEffect(std::function<void(const Effect&)> listener);
  // For devices behind loadable modules (the joystick, the board): adds their own effect to the stream.
  void Emit(EffectDetail detail);
};

// The machine that the API works on; aborts when there is none.
Machine& CurrentMachine();

}  // namespace pal
