// Windows and threads for contract tests, made with the Windows API alone.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace contract {

// True on Wine, which is known not to do there what Windows does: `how` says what it does instead.
inline bool WineDeviates(const char* /*how*/) {
  static const bool isWine = [] {
    const HMODULE ntdll = GetModuleHandleW(TEXT("ntdll.dll"));
    return ntdll && GetProcAddress(ntdll, "wine_get_version") != nullptr;
  }();
  return isWine;
}

// A window of the calling thread with a class of its own, which hands its messages to `handler`, if any.
// Whatever the handler leaves open (empty result) goes to the default procedure.
class TestWindow {
 public:
  using Answer = std::optional<LRESULT>;
  using Handler = std::function<Answer(HWND window, UINT message, WPARAM wParam, LPARAM lParam)>;
  static constexpr Answer kDefault = std::nullopt;

  explicit TestWindow(Handler handler = {}, const WCHAR* className = TEXT("ContractWindow"))
      : handler_(std::move(handler)) {
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = nullptr;
    windowClass.cbWndExtra = 2 * sizeof(LONG_PTR);
    windowClass.lpszClassName = className;
    RegisterClassExW(&windowClass);  // fails harmlessly when an earlier window had the class
    handle_ = CreateWindowExW(0, className, TEXT("contract title"), WS_OVERLAPPEDWINDOW, 0, 0, 0, 0, nullptr,
                              nullptr, nullptr, this);
  }
  ~TestWindow() {
    if (IsWindow(handle_)) DestroyWindow(handle_);
  }
  TestWindow(const TestWindow&) = delete;
  TestWindow& operator=(const TestWindow&) = delete;

  [[nodiscard]] HWND Get() const { return handle_; }

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
      const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
      SetWindowLongPtrW(window, 0, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    const auto* self = reinterpret_cast<const TestWindow*>(GetWindowLongPtrW(window, 0));
    if (self && self->handler_)
      if (const Answer answer = self->handler_(window, message, wParam, lParam)) return *answer;
    return DefWindowProcW(window, message, wParam, lParam);
  }

  Handler handler_;
  HWND handle_ = nullptr;
};

// A thread that runs an action; joined at the end.
class TestThread {
 public:
  explicit TestThread(std::function<void()> action)
      : action_(std::move(action)), done_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
    CloseHandle(CreateThread(nullptr, 0, Procedure, this, 0, nullptr));
  }
  ~TestThread() {
    Join();
    CloseHandle(done_);
  }
  TestThread(const TestThread&) = delete;
  TestThread& operator=(const TestThread&) = delete;

  void Join() const { WaitForSingleObject(done_, INFINITE); }

 private:
  static DWORD WINAPI Procedure(void* self) {
    static_cast<TestThread*>(self)->action_();
    SetEvent(static_cast<TestThread*>(self)->done_);
    return 0;
  }

  std::function<void()> action_;
  HANDLE done_;
};

// Of a key or folder that no other test has, nor an earlier run.
inline std::basic_string<WCHAR> UniqueName() {
  static int count = 0;
  SYSTEMTIME time;
  GetLocalTime(&time);
  std::basic_string<WCHAR> name;
  for (const int number : {++count, int{time.wDay}, int{time.wHour}, int{time.wMinute}, int{time.wSecond}})
    for (const char digit : std::to_string(number) + '-') name.push_back(static_cast<WCHAR>(digit));
  return name;
}

// Milliseconds of the day.
inline int ClockMs() {
  SYSTEMTIME time;
  GetLocalTime(&time);
  return ((time.wHour * 60 + time.wMinute) * 60 + time.wSecond) * 1000 + time.wMilliseconds;
}
// Since an earlier moment of the same 24 hours.
inline int MsSince(int start) {
  constexpr int kDay = 86'400'000;
  return (ClockMs() - start + kDay) % kDay;
}

// How much earlier than its time something may seem to come, in ms: clocks tick.
constexpr int kClockTick = 16;

// All messages that wait now, without sleeping.
inline std::vector<MSG> TakeAll(HWND window = nullptr, UINT first = 0, UINT last = 0) {
  std::vector<MSG> taken;
  MSG message;
  while (PeekMessageW(&message, window, first, last, PM_REMOVE)) taken.push_back(message);
  return taken;
}

}  // namespace contract
