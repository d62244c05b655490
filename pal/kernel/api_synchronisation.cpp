// Mutexes, events, threads and waiting for them.
#include <algorithm>

#include "pal/kernel/tick_count.h"
#include "pal/machine/state.h"

using namespace pal;

namespace {

std::shared_ptr<Mutex> FindNamedMutex(const State& state, std::u16string_view name) {
  for (const std::weak_ptr<Mutex>& candidate : state.system.namedMutexes) {
    std::shared_ptr<Mutex> mutex = candidate.lock();
    if (mutex && mutex->name == name) return mutex;  // names of objects have case
  }
  return nullptr;
}

DWORD WaitFor(State& state, HANDLE handle, DWORD milliseconds) {
  const auto object = state.handles.Find<Object>(handle);
  if (!object) return Refuse(ERROR_INVALID_HANDLE, WAIT_FAILED);
  if (!object->IsWaitable()) Die("a wait for an object that the layer cannot wait for");
  const std::function<bool()> isSignaled = [&object] { return object->IsSignaled(); };
  if (isSignaled()) return WAIT_OBJECT_0;
  if (milliseconds == 0) return WAIT_TIMEOUT;
  const Waited waited = state.scheduler.Wait(isSignaled, Deadline(state.scheduler.Now(), milliseconds));
  if (waited == Waited::kProgramEnds) return Refuse(ERROR_OPERATION_ABORTED, WAIT_FAILED);
  return waited == Waited::kHolds ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}

}  // namespace

void WindowsSystem::AddForeignMutex(std::u16string_view name) {
  const MachineLock lock(mutex_);
  foreignMutexes_.push_back(std::make_shared<Mutex>(Mutex{std::u16string(name)}));
  namedMutexes.push_back(foreignMutexes_.back());
}

HANDLE WINAPI CreateMutexW(LPSECURITY_ATTRIBUTES security, BOOL /*initialOwner*/, LPCWSTR name) {
  const Call call("CreateMutexW");
  if (call.Fails()) return nullptr;
  if (security || !name) Die("CreateMutexW with security attributes or without a name");
  SetLastError(ERROR_SUCCESS);
  if (const auto existing = FindNamedMutex(call.Get(), name)) {
    SetLastError(ERROR_ALREADY_EXISTS);
    return call->handles.Add(std::make_shared<MutexObject>(existing));
  }
  auto mutex = std::make_shared<Mutex>(Mutex{name});
  std::erase_if(call->system.namedMutexes, [](const std::weak_ptr<Mutex>& other) { return other.expired(); });
  call->system.namedMutexes.push_back(mutex);
  return call->handles.Add(std::make_shared<MutexObject>(std::move(mutex)));
}

HANDLE WINAPI CreateEventW(LPSECURITY_ATTRIBUTES security, BOOL manualReset, BOOL initialState,
                           LPCWSTR name) {
  const Call call("CreateEventW");
  if (call.Fails()) return nullptr;
  if (security || name || !manualReset) Die("CreateEventW of anything but a plain manual event");
  SetLastError(ERROR_SUCCESS);
  return call->handles.Add(std::make_shared<EventObject>(initialState != FALSE));
}

BOOL WINAPI SetEvent(HANDLE event) {
  const Call call("SetEvent");
  if (call.Fails()) return FALSE;
  const auto object = call->handles.Find<EventObject>(event);
  if (!object) return Refuse(ERROR_INVALID_HANDLE, FALSE);
  object->Set(true);
  call->scheduler.Notify();
  return TRUE;
}

DWORD WINAPI WaitForSingleObject(HANDLE object, DWORD milliseconds) {
  const Call call("WaitForSingleObject");
  if (call.Fails()) return WAIT_FAILED;
  return WaitFor(call.Get(), object, milliseconds);
}

HANDLE WINAPI CreateThread(LPSECURITY_ATTRIBUTES security, SIZE_T /*stackSize*/, LPTHREAD_START_ROUTINE start,
                           LPVOID parameter, DWORD flags, LPDWORD threadId) {
  const Call call("CreateThread");
  if (call.Fails()) return nullptr;
  if (security || flags != 0 || threadId) Die("CreateThread with more than a procedure and its parameter");
  if (!Scheduler::Current()) Die("CreateThread outside the program");
  call->scheduler.Start([start, parameter] { return start(parameter); }, false);
  return call->handles.Add(std::make_shared<ThreadObject>());
}

void WINAPI Sleep(DWORD milliseconds) {
  const Call call;
  static const std::function<bool()> kNever = [] { return false; };
  call->scheduler.Wait(kNever, Deadline(call->scheduler.Now(), milliseconds));
}
