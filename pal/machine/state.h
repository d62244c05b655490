// The inside of the machine, as the API's functions see it.
//
// An API function that touches the machine begins with
//
//   Call call("RegOpenKeyExW");
//   if (call.Fails()) return static_cast<LSTATUS>(call.Error());
//   call->registry ...
//
// which takes the machine's lock, counts the call for Machine::Fail and gives the state.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "pal/devices/playback.h"
#include "pal/devices/serial_port.h"
#include "pal/dialogs/dialogs.h"
#include "pal/kernel/handles.h"
#include "pal/kernel/scheduler.h"
#include "pal/kernel/sync_objects.h"
#include "pal/machine/die.h"
#include "pal/machine/failures.h"
#include "pal/machine/machine.h"
#include "pal/machine/machine_mutex.h"
#include "pal/resources/pictures.h"
#include "pal/shell/menus.h"
#include "pal/shell/message_boxes.h"
#include "pal/shell/notification_area.h"
#include "pal/windows/desktop.h"
#include "pal/windows/drawing.h"

namespace pal {

// Registry, disk, resources, modules, version, language.
struct DataState;
std::shared_ptr<DataState> MakeDataState();
void ReleaseProgramData(State& state);  // the part of ReleaseProgram that concerns them

struct State {
  explicit State(Clock clock);
  ~State();

  // Adds to the stream of effects and tells the listener. Holds the lock.
  void Emit(EffectDetail detail);
  // What the end of a process does: everything that the program still holds goes.
  void ReleaseProgram();
  // What the end of a thread does: its windows and messages go.
  void ReleaseThread(Thread& thread);

  MachineMutex mutex;
  Scheduler scheduler;
  HandleTable handles;
  FailureTable failures;
  Desktop desktop;
  MessageBoxes boxes;
  NotificationArea notificationArea;
  Menus menus;
  Pictures pictures;
  Playback playback;
  Dialogs dialogs;
  Drawing drawing;
  std::set<int> heldKeys;
  SerialPorts serialPorts;
  std::shared_ptr<DataState> data;

  std::vector<Effect> effects;
  std::function<void(const Effect&)> effectListener;
  std::u16string commandLine;
  SYSTEMTIME localTimeAtStart{};
  std::vector<std::weak_ptr<Mutex>> namedMutexes;
  std::vector<std::shared_ptr<Mutex>> foreignMutexes;  // that other programs hold
  std::vector<std::vector<uint8_t>> postedCopies;      // what messages that the outside posted point to
  DWORD executionState = ES_CONTINUOUS;
  bool mayShutDown = false;  // the program has enabled that privilege
  POINT cursor = {512, 384};
  HWND foreground = nullptr;
  uint32_t lastGuid = 0;
  Time executedProgramTime{0};   // how long a program runs that the shell started
  UINT_PTR lastFreeTimerId = 0;  // of timers without a window
};

// Where the program is loaded: its HINSTANCE, and what GetModuleHandleW(nullptr) gives.
inline HINSTANCE ProgramInstance() {
  return reinterpret_cast<HINSTANCE>(static_cast<ULONG_PTR>(0x140000000));
}

// The state of the current machine; dies when there is none.
State& CurrentState();

// Of the calling thread.
void SetLastError(DWORD error);

// One call of the API.
class Call {
 public:
  explicit Call(const char* function)
      : state_(CurrentState()), lock_(state_.mutex), error_(state_.failures.Take(function)) {
    if (error_) SetLastError(*error_);
  }
  // A call that cannot be made to fail.
  Call() : state_(CurrentState()), lock_(state_.mutex) {}

  State* operator->() const { return &state_; }
  [[nodiscard]] State& Get() const { return state_; }
  // Whether the test wants this call to fail; the last error is set already.
  [[nodiscard]] bool Fails() const { return error_.has_value(); }
  [[nodiscard]] DWORD Error() const { return error_.value_or(ERROR_SUCCESS); }

 private:
  State& state_;
  MachineLock lock_;
  std::optional<DWORD> error_;
};

// Sets the last error and gives the function's failing result: return Refuse(ERROR_INVALID_HANDLE, FALSE);
template <class Result>
Result Refuse(DWORD error, Result result) {
  SetLastError(error);
  return result;
}

// The disk side of CreateFileW: every name that is not a port. INVALID_HANDLE_VALUE and a last error when it
// fails.
HANDLE OpenDiskFile(State& state, const WCHAR* name, DWORD access, DWORD shareMode, DWORD disposition,
                    DWORD flagsAndAttributes);

}  // namespace pal
