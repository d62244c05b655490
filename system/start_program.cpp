#include "system/start_program.h"

#include <shellapi.h>

#include "base/at_end.h"
#include "base/handles.h"

namespace veltra {
namespace {

// Older Windows lack these functions.
template <class Function>
Function FindKernelFunction(const char* name) {
  return FindExport<Function>(GetModuleHandleW(TEXT("kernel32")), name);
}

bool SetRedirection(bool on) {
  using EnableRedirection = BOOLEAN(WINAPI*)(BOOLEAN);
  const auto enable = FindKernelFunction<EnableRedirection>("Wow64EnableWow64FsRedirection");
  return enable && enable(on ? TRUE : FALSE);
}

void Open(const WideText& path) {
  const PlainErrorMode forTheProgram;
  const size_t end = path.rfind('\\');
  const WideText folder = end == path.npos ? WideText() : path.substr(0, end);
  ShellExecuteW(nullptr, nullptr, path.c_str(), nullptr, folder.c_str(), SW_SHOWNORMAL);
}

}  // namespace

bool IsWow64() {
  using IsWow64ProcessFunction = BOOL(WINAPI*)(HANDLE, PBOOL);
  const auto isWow64Process = FindKernelFunction<IsWow64ProcessFunction>("IsWow64Process");
  BOOL answer = FALSE;
  return isWow64Process && isWow64Process(GetCurrentProcess(), &answer) && answer;
}

void StartProgram(const WideText& path) {
  if (!IsWow64()) return Open(path);
  if (!SetRedirection(false)) return;
  const AtEnd redirected([] { SetRedirection(true); });
  Open(path);
}

}  // namespace veltra
