// Mutexes, events, threads and waiting for them.
#include <algorithm>

#include "pal/state.h"
#include "pal/tick_count.h"

using namespace pal;

namespace {

constexpr DWORD kStackSizeIsReservation = 0x00010000;

std::shared_ptr<Mutex> FindNamedMutex(const State& state, std::u16string_view name) {
  for (const std::weak_ptr<Mutex>& candidate : state.namedMutexes) {
    std::shared_ptr<Mutex> mutex = candidate.lock();
    if (mutex && mutex->name == name) return mutex;  // names of objects have case
  }
  return nullptr;
}

// The objects of one wait and when it may end.
class ObjectWait {
 public:
  ObjectWait(std::vector<std::shared_ptr<Object>> objects, bool all)
      : objects_(std::move(objects)), all_(all), waiter_(Scheduler::Current()) {}

  [[nodiscard]] bool MayEnd() const {
    const auto signaled = [this](const auto& object) { return object->IsSignaled(waiter_); };
    return all_ ? std::all_of(objects_.begin(), objects_.end(), signaled)
                : std::any_of(objects_.begin(), objects_.end(), signaled);
  }

  // Takes what ended the wait; returns its index.
  DWORD Take() {
    for (size_t index = 0; index < objects_.size(); ++index) {
      if (!objects_[index]->IsSignaled(waiter_)) continue;
      objects_[index]->Acquire(waiter_);
      if (!all_) return static_cast<DWORD>(index);
    }
    return 0;
  }

 private:
  std::vector<std::shared_ptr<Object>> objects_;
  bool all_;
  const Thread* waiter_;
};

DWORD WaitFor(State& state, std::span<const HANDLE> handles, bool all, DWORD milliseconds) {
  std::vector<std::shared_ptr<Object>> objects;
  for (const HANDLE handle : handles) {
    const auto object = state.handles.Find<Object>(handle);
    if (!object) return Refuse(ERROR_INVALID_HANDLE, WAIT_FAILED);
    if (!object->IsWaitable()) Die("a wait for an object that the layer cannot wait for");
    objects.push_back(object);
  }
  ObjectWait wait(std::move(objects), all);
  if (wait.MayEnd()) return WAIT_OBJECT_0 + wait.Take();
  if (milliseconds == 0) return WAIT_TIMEOUT;
  const std::function<bool()> mayEnd = [&wait] { return wait.MayEnd(); };
  switch (state.scheduler.Wait(mayEnd, Deadline(state.scheduler.Now(), milliseconds))) {
    case Waited::kHolds:
      return WAIT_OBJECT_0 + wait.Take();
    case Waited::kTimedOut:
      return WAIT_TIMEOUT;
    default:
      return Refuse(ERROR_OPERATION_ABORTED, WAIT_FAILED);
  }
}

BOOL ChangeEvent(const char* function, HANDLE event, bool signaled) {
  const Call call(function);
  if (call.Fails()) return FALSE;
  const auto object = call->handles.Find<EventObject>(event);
  if (!object) return Refuse(ERROR_INVALID_HANDLE, FALSE);
  object->Set(signaled);
  if (signaled) call->scheduler.Notify();
  return TRUE;
}

}  // namespace

HANDLE WINAPI CreateMutexW(LPSECURITY_ATTRIBUTES security, BOOL initialOwner, LPCWSTR name) {
  const Call call("CreateMutexW");
  if (call.Fails()) return nullptr;
  if (security) Die("CreateMutexW with security attributes");
  SetLastError(ERROR_SUCCESS);
  if (name) {
    if (const auto existing = FindNamedMutex(call.Get(), name)) {
      SetLastError(ERROR_ALREADY_EXISTS);
      return call->handles.Add(std::make_shared<MutexObject>(existing));
    }
  }
  auto mutex = std::make_shared<Mutex>();
  if (initialOwner) {
    mutex->owner = Scheduler::Current();
    mutex->depth = 1;
  }
  if (name) {
    mutex->name = name;
    std::erase_if(call->namedMutexes, [](const std::weak_ptr<Mutex>& other) { return other.expired(); });
    call->namedMutexes.push_back(mutex);
  }
  return call->handles.Add(std::make_shared<MutexObject>(std::move(mutex)));
}

BOOL WINAPI ReleaseMutex(HANDLE mutex) {
  const Call call;
  const auto object = call->handles.Find<MutexObject>(mutex);
  if (!object) return Refuse(ERROR_INVALID_HANDLE, FALSE);
  Mutex& held = *object->Get();
  if (held.depth == 0 || held.owner != Scheduler::Current()) return Refuse(ERROR_NOT_OWNER, FALSE);
  if (--held.depth == 0) held.owner = nullptr;
  call->scheduler.Notify();
  return TRUE;
}

HANDLE WINAPI CreateEventW(LPSECURITY_ATTRIBUTES security, BOOL manualReset, BOOL initialState,
                           LPCWSTR name) {
  const Call call("CreateEventW");
  if (call.Fails()) return nullptr;
  if (security || name) Die("CreateEventW with security attributes or a name");
  SetLastError(ERROR_SUCCESS);
  return call->handles.Add(std::make_shared<EventObject>(manualReset != FALSE, initialState != FALSE));
}

BOOL WINAPI SetEvent(HANDLE event) {
  return ChangeEvent("SetEvent", event, true);
}

BOOL WINAPI ResetEvent(HANDLE event) {
  return ChangeEvent("ResetEvent", event, false);
}

DWORD WINAPI WaitForSingleObject(HANDLE object, DWORD milliseconds) {
  const Call call("WaitForSingleObject");
  if (call.Fails()) return WAIT_FAILED;
  return WaitFor(call.Get(), {&object, 1}, false, milliseconds);
}

DWORD WINAPI WaitForMultipleObjects(DWORD count, const HANDLE* objects, BOOL waitAll, DWORD milliseconds) {
  const Call call("WaitForMultipleObjects");
  if (call.Fails()) return WAIT_FAILED;
  if (count == 0 || count > MAXIMUM_WAIT_OBJECTS) return Refuse(ERROR_INVALID_PARAMETER, WAIT_FAILED);
  return WaitFor(call.Get(), {objects, count}, waitAll != FALSE, milliseconds);
}

HANDLE WINAPI CreateThread(LPSECURITY_ATTRIBUTES security, SIZE_T /*stackSize*/, LPTHREAD_START_ROUTINE start,
                           LPVOID parameter, DWORD flags, LPDWORD threadId) {
  const Call call("CreateThread");
  if (call.Fails()) return nullptr;
  if (security || (flags & ~kStackSizeIsReservation))
    Die("CreateThread with security attributes or unknown flags");
  if (!Scheduler::Current()) Die("CreateThread outside the program");
  auto thread = call->scheduler.Start([start, parameter] { return start(parameter); }, false);
  if (threadId) *threadId = thread->id;
  return call->handles.Add(std::make_shared<ThreadObject>(std::move(thread)));
}

BOOL WINAPI GetExitCodeThread(HANDLE thread, LPDWORD exitCode) {
  const Call call("GetExitCodeThread");
  if (call.Fails()) return FALSE;
  const auto object = call->handles.Find<ThreadObject>(thread);
  if (!object) return Refuse(ERROR_INVALID_HANDLE, FALSE);
  *exitCode = object->ExitCode();
  return TRUE;
}

void WINAPI Sleep(DWORD milliseconds) {
  const Call call;
  static const std::function<bool()> kNever = [] { return false; };
  call->scheduler.Wait(kNever, Deadline(call->scheduler.Now(), milliseconds));
}
