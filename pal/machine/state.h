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
#include <string>
#include <vector>

#include "pal/devices/com_object.h"
#include "pal/devices/power.h"
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
#include "pal/windows/drawing.h"

namespace pal {

struct State {
  explicit State(Clock kind);
  ~State();

  // Adds to the stream of effects and tells the listener. Holds the lock.
  void Emit(EffectDetail detail);
  // What the end of a process does: everything that the program still holds goes.
  void ReleaseProgram();
  // What the end of a thread does: its windows and messages go.
  void ReleaseThread(Thread& thread);

  MachineMutex mutex;
  Scheduler scheduler;
  MachineClock clock{*this};
  HandleTable handles;
  FailureTable failures;
  Modules modules{mutex};
  WindowsSystem system{mutex};
  Registry registry{mutex};
  Disk disk{mutex};
  ResourceTable resources{mutex};
  Pictures pictures;
  Desktop desktop{*this};
  Dialogs dialogs;
  Drawing drawing;
  MessageBoxes boxes{*this};
  NotificationArea tray{*this};
  Menus menus{*this};
  SerialPorts serial{*this};
  Playback playback;
  ComObjects comObjects;
  Power power;

  std::vector<Effect> effects;
  std::function<void(const Effect&)> effectListener;
  std::u16string commandLine;
  uint32_t lastGuid = 0;
};

// Where the program is loaded: its HINSTANCE, and what GetModuleHandleW(nullptr) gives.
inline HINSTANCE ProgramInstance() {
  return reinterpret_cast<HINSTANCE>(static_cast<ULONG_PTR>(0x140000000));
}

// The state of the current machine; dies when there is none.
State& CurrentState();

// Of the calling thread.
void SetLastError(DWORD error);
DWORD LastError();

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
  // The same as COM returns it.
  [[nodiscard]] HRESULT Result() const { return HRESULT_FROM_WIN32(Error()); }

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

// The text of a parameter that may be null.
inline std::u16string_view OrEmpty(LPCWSTR text) {
  return text ? std::u16string_view(text) : std::u16string_view();
}

// The disk side of CreateFileW: every name that is not a port. INVALID_HANDLE_VALUE and a last error when it
// fails.
HANDLE OpenDiskFile(State& state, const WCHAR* name, DWORD access, DWORD shareMode, DWORD disposition,
                    DWORD flagsAndAttributes);

}  // namespace pal
