// Last error, handles, reading and writing through them.
#include <algorithm>

#include "pal/machine/state.h"

using namespace pal;

namespace {

HANDLE OpenPort(State& state, int number, DWORD access, DWORD share, DWORD disposition,
                DWORD flagsAndAttributes) {
  if (!(flagsAndAttributes & FILE_FLAG_OVERLAPPED)) Die("a port opened without FILE_FLAG_OVERLAPPED");
  SerialPort* port = state.serial.Find(number);
  if (!port) return Refuse(ERROR_FILE_NOT_FOUND, INVALID_HANDLE_VALUE);
  if (disposition != OPEN_EXISTING) return Refuse(ERROR_INVALID_PARAMETER, INVALID_HANDLE_VALUE);
  HANDLE handle = INVALID_HANDLE_VALUE;
  if (const DWORD error = port->Open(handle, access, share)) return Refuse(error, INVALID_HANDLE_VALUE);
  return handle;
}

// The common end of ReadFile and WriteFile.
BOOL FinishTransfer(DWORD error, DWORD transferred, LPDWORD count) {
  if (count) *count = transferred;
  return error == ERROR_SUCCESS ? TRUE : Refuse(error, FALSE);
}

}  // namespace

DWORD WINAPI GetLastError() {
  return LastError();
}

void WINAPI OutputDebugStringW(LPCWSTR text) {
  const Call call;
  call->Emit(DebugOutput{text ? text : u""});
}

BOOL WINAPI CloseHandle(HANDLE handle) {
  const Call call;
  return call->handles.Close(handle) ? TRUE : Refuse(ERROR_INVALID_HANDLE, FALSE);
}

HANDLE WINAPI CreateFileW(LPCWSTR name, DWORD access, DWORD shareMode, LPSECURITY_ATTRIBUTES security,
                          DWORD disposition, DWORD flagsAndAttributes, HANDLE templateFile) {
  const Call call("CreateFileW");
  if (call.Fails()) return INVALID_HANDLE_VALUE;
  if (security || templateFile) Die("CreateFileW with security attributes or a template");
  if (!name) return Refuse(ERROR_PATH_NOT_FOUND, INVALID_HANDLE_VALUE);
  if (const std::optional<int> number = PortNumberOf(name))
    return OpenPort(call.Get(), *number, access, shareMode, disposition, flagsAndAttributes);
  return OpenDiskFile(call.Get(), name, access, shareMode, disposition, flagsAndAttributes);
}

BOOL WINAPI ReadFile(HANDLE file, LPVOID buffer, DWORD count, LPDWORD transferred, LPOVERLAPPED overlapped) {
  const Call call("ReadFile");
  if (call.Fails()) return FALSE;
  const auto object = call->handles.Find<Object>(file);
  if (!object) return Refuse(ERROR_INVALID_HANDLE, FALSE);
  DWORD done = 0;
  const DWORD error = object->Read({static_cast<uint8_t*>(buffer), count}, overlapped, done);
  return FinishTransfer(error, done, transferred);
}

BOOL WINAPI WriteFile(HANDLE file, LPCVOID buffer, DWORD count, LPDWORD transferred,
                      LPOVERLAPPED overlapped) {
  const Call call("WriteFile");
  if (call.Fails()) return FALSE;
  const auto object = call->handles.Find<Object>(file);
  if (!object) return Refuse(ERROR_INVALID_HANDLE, FALSE);
  DWORD done = 0;
  const DWORD error = object->Write({static_cast<const uint8_t*>(buffer), count}, overlapped, done);
  return FinishTransfer(error, done, transferred);
}

BOOL WINAPI GetOverlappedResult(HANDLE file, LPOVERLAPPED overlapped, LPDWORD transferred, BOOL wait) {
  const Call call("GetOverlappedResult");
  if (call.Fails()) return FALSE;
  const auto object = call->handles.Find<Object>(file);
  if (!object) return Refuse(ERROR_INVALID_HANDLE, FALSE);
  const std::function<bool()> isOver = [overlapped] { return !IsUnderWay(*overlapped); };
  if (!isOver() && !wait) return Refuse(ERROR_IO_INCOMPLETE, FALSE);
  if (call->scheduler.Wait(isOver, std::nullopt) != Waited::kHolds)
    return Refuse(ERROR_OPERATION_ABORTED, FALSE);
  *transferred = static_cast<DWORD>(overlapped->InternalHigh);
  const auto error = static_cast<DWORD>(overlapped->Internal);
  return error == ERROR_SUCCESS ? TRUE : Refuse(error, FALSE);
}
