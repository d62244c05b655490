// Settings, events and errors of serial ports.
#include "pal/machine/state.h"

using namespace pal;

namespace {

// One call on a port's handle; `action` gives 0 or the error.
template <class Action>
BOOL OnPort(const char* function, HANDLE port, Action action) {
  const Call call(function);
  if (call.Fails()) return FALSE;
  const auto handle = call->handles.Find<PortHandle>(port);
  DWORD error = handle ? handle->Refusal() : static_cast<DWORD>(ERROR_INVALID_HANDLE);
  if (error == ERROR_SUCCESS) error = action(*handle);
  return error == ERROR_SUCCESS ? TRUE : Refuse(error, FALSE);
}

// Takes a record over.
template <class Record>
DWORD Copy(Record& to, const Record& from) {
  to = from;
  return ERROR_SUCCESS;
}

}  // namespace

BOOL WINAPI GetCommTimeouts(HANDLE port, LPCOMMTIMEOUTS timeouts) {
  return OnPort("GetCommTimeouts", port,
                [&](PortHandle& handle) { return Copy(*timeouts, handle.Timeouts()); });
}

BOOL WINAPI SetCommTimeouts(HANDLE port, LPCOMMTIMEOUTS timeouts) {
  return OnPort("SetCommTimeouts", port,
                [&](PortHandle& handle) { return Copy(handle.Timeouts(), *timeouts); });
}

BOOL WINAPI GetCommState(HANDLE port, LPDCB dcb) {
  return OnPort("GetCommState", port, [&](PortHandle& handle) { return Copy(*dcb, handle.Settings()); });
}

BOOL WINAPI SetCommState(HANDLE port, LPDCB dcb) {
  return OnPort("SetCommState", port, [&](PortHandle& handle) { return handle.SetSettings(*dcb); });
}

BOOL WINAPI PurgeComm(HANDLE port, DWORD flags) {
  return OnPort("PurgeComm", port, [&](PortHandle& handle) { return handle.Purge(flags); });
}

BOOL WINAPI SetCommMask(HANDLE port, DWORD events) {
  return OnPort("SetCommMask", port, [&](PortHandle& handle) { return handle.SetMask(events); });
}

BOOL WINAPI CancelIoEx(HANDLE file, LPOVERLAPPED overlapped) {
  if (overlapped) Die("CancelIoEx of one transfer");
  return OnPort("CancelIoEx", file, [](PortHandle& handle) { return handle.Cancel(); });
}

BOOL WINAPI WaitCommEvent(HANDLE port, LPDWORD events, LPOVERLAPPED overlapped) {
  if (overlapped) Die("an overlapped WaitCommEvent");
  return OnPort("WaitCommEvent", port, [&](PortHandle& handle) { return handle.WaitEvent(events); });
}

BOOL WINAPI ClearCommError(HANDLE port, LPDWORD errors, LPCOMSTAT status) {
  return OnPort("ClearCommError", port, [&](PortHandle& handle) {
    DWORD taken = 0;
    const DWORD error = handle.TakeErrors(taken, status);
    if (errors) *errors = taken;
    return error;
  });
}
