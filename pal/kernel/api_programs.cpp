// Other programs, started through the shell. They are only written down.
#include <shellapi.h>

#include "pal/machine/state.h"

using namespace pal;

namespace {

// A started program, which ends by itself.
class ProcessObject final : public Object {
 public:
  ProcessObject(const Scheduler& scheduler, Time end) : scheduler_(scheduler), end_(end) {}

  [[nodiscard]] std::string_view Kind() const override { return "process"; }
  [[nodiscard]] bool IsWaitable() const override { return true; }
  [[nodiscard]] bool IsSignaled() const override { return scheduler_.Now() >= end_; }

 private:
  const Scheduler& scheduler_;
  Time end_;
};

std::u16string TextOrNothing(LPCWSTR text) {
  return text ? text : u"";
}

HANDLE StartProcess(State& state) {
  const Time end = state.scheduler.Now() + state.system.executedProgramTime;
  state.scheduler.At(end, [] {});  // whoever waits looks again then
  return state.handles.Add(std::make_shared<ProcessObject>(state.scheduler, end));
}

}  // namespace

HINSTANCE WINAPI ShellExecuteW(HWND, LPCWSTR verb, LPCWSTR file, LPCWSTR parameters, LPCWSTR directory,
                               int show) {
  constexpr ULONG_PTR kStarted = 42;
  const Call call("ShellExecuteW");
  if (call.Fails()) return reinterpret_cast<HINSTANCE>(static_cast<ULONG_PTR>(call.Error()));
  call->Emit(ProgramExecuted{TextOrNothing(verb), TextOrNothing(file), TextOrNothing(parameters),
                             TextOrNothing(directory), show});
  return reinterpret_cast<HINSTANCE>(kStarted);
}

BOOL WINAPI ShellExecuteExW(SHELLEXECUTEINFOW* info) {
  const Call call("ShellExecuteExW");
  if (call.Fails()) return FALSE;
  if (info->cbSize != sizeof(*info)) Die("SHELLEXECUTEINFOW of another size");
  if (info->fMask & ~SEE_MASK_NOCLOSEPROCESS) Die("ShellExecuteExW with an unknown flag");
  call->Emit(ProgramExecuted{TextOrNothing(info->lpVerb), TextOrNothing(info->lpFile),
                             TextOrNothing(info->lpParameters), TextOrNothing(info->lpDirectory), info->nShow,
                             info->fMask});
  info->hProcess = info->fMask & SEE_MASK_NOCLOSEPROCESS ? StartProcess(call.Get()) : nullptr;
  return TRUE;
}
