// What the compiler's checks of the stack and of copied lengths call. The compiler's own library would ask a
// provider of Windows for random numbers, which loads further libraries; that must not happen while a plug-in
// is being loaded. As other compilers do, the guard is mixed from what differs at every start.
#include <windows.h>

#include <cstdint>

extern "C" {

uintptr_t __stack_chk_guard = 0;

// A crash that Windows reports, with its dump; nothing of the program runs any more.
[[noreturn]] void __stack_chk_fail() {
  __builtin_trap();
}

[[noreturn]] void __chk_fail() {
  __builtin_trap();
}

}  // extern "C"

namespace {

[[gnu::constructor(101), gnu::no_stack_protector]] void SetGuard() {
  FILETIME time = {};
  GetSystemTimeAsFileTime(&time);
  LARGE_INTEGER counter = {};
  QueryPerformanceCounter(&counter);
  const auto place = reinterpret_cast<uintptr_t>(&counter);
  const auto module = reinterpret_cast<uintptr_t>(&SetGuard);
  const uintptr_t ids = uintptr_t{GetCurrentProcessId()} << 16 ^ GetCurrentThreadId();
  const uintptr_t now = uintptr_t{time.dwLowDateTime} * 2654435761U;
  // The lowest byte stays 0: a text that runs over its end does not get past it.
  __stack_chk_guard =
      (now ^ static_cast<uintptr_t>(counter.QuadPart) << 8 ^ place << 4 ^ module ^ ids) & ~uintptr_t{0xFF};
}

}  // namespace
