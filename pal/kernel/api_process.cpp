// The process, time and power.
#include <chrono>

#include "pal/kernel/tick_count.h"
#include "pal/machine/state.h"

using namespace pal;

namespace {

std::chrono::sys_time<std::chrono::milliseconds> ToHost(const SYSTEMTIME& time) {
  using namespace std::chrono;
  return sys_days(year(time.wYear) / time.wMonth / time.wDay) + hours(time.wHour) + minutes(time.wMinute) +
         seconds(time.wSecond) + milliseconds(time.wMilliseconds);
}

SYSTEMTIME FromHost(std::chrono::sys_time<std::chrono::milliseconds> time) {
  using namespace std::chrono;
  const sys_days day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(time - day);
  SYSTEMTIME result{};
  result.wYear = static_cast<WORD>(static_cast<int>(date.year()));
  result.wMonth = static_cast<WORD>(static_cast<unsigned>(date.month()));
  result.wDayOfWeek = static_cast<WORD>(weekday(day).c_encoding());
  result.wDay = static_cast<WORD>(static_cast<unsigned>(date.day()));
  result.wHour = static_cast<WORD>(clock.hours().count());
  result.wMinute = static_cast<WORD>(clock.minutes().count());
  result.wSecond = static_cast<WORD>(clock.seconds().count());
  result.wMilliseconds = static_cast<WORD>(clock.subseconds().count());
  return result;
}

}  // namespace

UINT WINAPI GetConsoleOutputCP() {
  return Refuse<UINT>(ERROR_INVALID_HANDLE, 0);
}

BOOL WINAPI SetConsoleOutputCP(UINT /*codePage*/) {
  return Refuse(ERROR_INVALID_HANDLE, FALSE);
}

LPWSTR WINAPI GetCommandLineW() {
  const Call call;
  return call->commandLine.data();
}

void WINAPI GetLocalTime(LPSYSTEMTIME time) {
  const Call call;
  const auto passed = std::chrono::duration_cast<std::chrono::milliseconds>(call->scheduler.Now());
  *time = FromHost(ToHost(call->clock.localTimeAtStart) + passed);
}

DWORD WINAPI GetTickCount() {
  const Call call;
  return TickCount(call->scheduler.Now());
}

EXECUTION_STATE WINAPI SetThreadExecutionState(EXECUTION_STATE flags) {
  const Call call("SetThreadExecutionState");
  if (call.Fails()) return 0;
  if (flags & ~(ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED | ES_CONTINUOUS))
    Die("SetThreadExecutionState with an unknown flag");
  call->Emit(ExecutionState{flags});
  return ES_CONTINUOUS;  // that before the call; nobody looks at what it was in full
}

BOOL WINAPI ShutdownBlockReasonCreate(HWND window, LPCWSTR reason) {
  const Call call("ShutdownBlockReasonCreate");
  if (call.Fails()) return FALSE;
  const Window* found = call->desktop.Find(window);
  if (!found) return Refuse(ERROR_INVALID_WINDOW_HANDLE, FALSE);
  if (found->thread != Scheduler::Current()) return Refuse(ERROR_ACCESS_DENIED, FALSE);
  if (!reason || !*reason) return Refuse(ERROR_INVALID_PARAMETER, FALSE);
  call->Emit(SessionHeld{reason});
  return TRUE;
}

BOOL WINAPI ShutdownBlockReasonDestroy(HWND window) {
  const Call call("ShutdownBlockReasonDestroy");
  if (call.Fails()) return FALSE;
  if (!call->desktop.Find(window)) return Refuse(ERROR_INVALID_WINDOW_HANDLE, FALSE);
  call->Emit(SessionHeld{});
  return TRUE;
}
