// Other programs, started through the shell. They are only written down.
#include <shellapi.h>

#include <algorithm>

#include "pal/machine/state.h"
#include "pal/text/unicode.h"

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

HANDLE StartProcess(State& state) {
  const Time end = state.scheduler.Now() + state.system.executedProgramTime;
  state.scheduler.At(end, [] {});  // whoever waits looks again then
  return state.handles.Add(std::make_shared<ProcessObject>(state.scheduler, end));
}

bool IsMissing(const Call& call, std::u16string_view file) {
  return std::ranges::any_of(call->system.removedPrograms,
                             [file](const std::u16string& removed) { return EqualFolded(removed, file); });
}

bool Execute(SHELLEXECUTEINFOW& info) {
  const Call call("ShellExecuteExW");
  if (call.Fails()) return false;
  if (info.cbSize != sizeof(info)) Die("SHELLEXECUTEINFOW of another size");
  if (info.fMask & ~(SEE_MASK_NOCLOSEPROCESS | SEE_MASK_FLAG_NO_UI))
    Die("ShellExecuteExW with an unknown flag");
  if (IsMissing(call, info.lpFile)) return Refuse(ERROR_FILE_NOT_FOUND, false);
  call->Emit(ProgramExecuted{std::u16string(OrEmpty(info.lpVerb)), std::u16string(OrEmpty(info.lpFile)),
                             std::u16string(OrEmpty(info.lpParameters)),
                             std::u16string(OrEmpty(info.lpDirectory)), info.nShow, info.fMask,
                             call->modules.search.errorMode});
  info.hProcess = info.fMask & SEE_MASK_NOCLOSEPROCESS ? StartProcess(call.Get()) : nullptr;
  return true;
}

}  // namespace

void WindowsSystem::RemoveProgram(std::u16string_view path) {
  const MachineLock lock(mutex_);
  removedPrograms.emplace_back(path);
}

bool pal::HasModernStandby(const WindowsSystem& system) {
  return std::pair(system.version.major, system.version.minor) >= std::pair(WORD{6}, WORD{2});
}

HANDLE WINAPI OpenProcess(DWORD access, BOOL /*inherits*/, DWORD id) {
  const Call call("OpenProcess");
  if (call.Fails()) return nullptr;
  if (access != PROCESS_QUERY_INFORMATION || id == 0) Die("OpenProcess with other rights, or of no process");
  return call->handles.Add(std::make_shared<ProcessObject>(call->scheduler, Time::max()));
}

HINSTANCE WINAPI ShellExecuteW(HWND owner, LPCWSTR verb, LPCWSTR file, LPCWSTR parameters, LPCWSTR directory,
                               int show) {
  constexpr ULONG_PTR kStarted = 42;
  SHELLEXECUTEINFOW info = {};
  info.cbSize = sizeof(info);
  info.hwnd = owner;
  info.lpVerb = verb;
  info.lpFile = file;
  info.lpParameters = parameters;
  info.lpDirectory = directory;
  info.nShow = show;
  const bool started = ShellExecuteExW(&info) != FALSE;
  return reinterpret_cast<HINSTANCE>(started ? kStarted : static_cast<ULONG_PTR>(GetLastError()));
}

BOOL WINAPI ShellExecuteExW(SHELLEXECUTEINFOW* info) {
  if (Execute(*info)) return TRUE;
  if (GetLastError() == ERROR_FILE_NOT_FOUND && !(info->fMask & SEE_MASK_FLAG_NO_UI)) {
    MessageBoxW(info->hwnd, u"Windows cannot find the program.", info->lpFile, MB_OK | MB_ICONERROR);
    SetLastError(ERROR_FILE_NOT_FOUND);
  }
  return FALSE;
}
