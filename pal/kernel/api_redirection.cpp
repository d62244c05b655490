// What a 32-bit program on a 64-bit Windows asks and says of the system directory.
#include "pal/machine/state.h"

using namespace pal;

BOOL WINAPI IsWow64Process(HANDLE process, PBOOL isWow64) {
  const Call call("IsWow64Process");
  if (process != GetCurrentProcess()) Die("IsWow64Process of another process");
  if (call.Fails()) return FALSE;
  *isWow64 = call->system.isWow64 ? TRUE : FALSE;
  return TRUE;
}

BOOLEAN WINAPI Wow64EnableWow64FsRedirection(BOOLEAN enable) {
  const Call call("Wow64EnableWow64FsRedirection");
  if (call.Fails()) return FALSE;
  if (!call->system.isWow64) return Refuse(ERROR_INVALID_FUNCTION, BOOLEAN{FALSE});
  call->Emit(RedirectionSet{enable != FALSE});
  return TRUE;
}
