// Windows and threads for contract tests, made with the Windows API alone.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace contract {

// True on Wine, which is known not to do there what Windows does: `how` says what it does instead.
inline bool WineDeviates(const char* /*how*/) {
  const DWORD error = GetLastError();
  const HMODULE ntdll = GetModuleHandleW(TEXT("ntdll.dll"));
  const bool isWine = ntdll && GetProcAddress(ntdll, "wine_get_version") != nullptr;
  SetLastError(error);  // the caller may look at it
  return isWine;
}

// A window of the calling thread with a class of its own, which hands its messages to `handler`. Whatever the
// handler leaves open (empty result) goes to the default procedure.
class TestWindow {
 public:
  using Answer = std::optional<LRESULT>;
  using Handler = std::function<Answer(HWND window, UINT message, WPARAM wParam, LPARAM lParam)>;
  static constexpr Answer kDefault = std::nullopt;

  explicit TestWindow(Handler handler, const WCHAR* className = TEXT("ContractWindow"), HWND parent = nullptr)
      : handler_(std::move(handler)), className_(className) {
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = nullptr;
    windowClass.cbWndExtra = 2 * sizeof(LONG_PTR);
    windowClass.lpszClassName = className;
    RegisterClassExW(&windowClass);
    handle_ = CreateWindowExW(0, className, TEXT("contract title"), WS_OVERLAPPEDWINDOW, 0, 0, 0, 0, parent,
                              nullptr, nullptr, this);
  }
  ~TestWindow() {
    if (IsWindow(handle_)) DestroyWindow(handle_);
    UnregisterClassW(className_, nullptr);
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
    if (self) {
      const Answer answer = self->handler_(window, message, wParam, lParam);
      if (answer) return *answer;
    }
    return DefWindowProcW(window, message, wParam, lParam);
  }

  Handler handler_;
  const WCHAR* className_;
  HWND handle_ = nullptr;
};

// A thread that runs an action; joined at the end.
class TestThread {
 public:
  explicit TestThread(std::function<void()> action) : action_(std::move(action)) {
    handle_ = CreateThread(nullptr, 0, Procedure, this, 0, &id_);
  }
  ~TestThread() {
    Join();
    CloseHandle(handle_);
  }
  TestThread(const TestThread&) = delete;
  TestThread& operator=(const TestThread&) = delete;

  void Join() const { WaitForSingleObject(handle_, INFINITE); }
  [[nodiscard]] HANDLE Get() const { return handle_; }
  [[nodiscard]] DWORD Id() const { return id_; }

 private:
  static DWORD WINAPI Procedure(void* self) {
    static_cast<TestThread*>(self)->action_();
    return 17;
  }

  std::function<void()> action_;
  DWORD id_ = 0;
  HANDLE handle_ = nullptr;
};

// Takes and dispatches messages until `done` holds; a due WM_TIMER of a helper keeps the loop awake.
inline void RunMessagesUntil(const std::function<bool()>& done) {
  MSG message;
  while (!done() && GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
}

// All messages that wait now, without sleeping.
inline std::vector<MSG> TakeAll(HWND window = nullptr, UINT first = 0, UINT last = 0) {
  std::vector<MSG> taken;
  MSG message;
  while (PeekMessageW(&message, window, first, last, PM_REMOVE)) taken.push_back(message);
  return taken;
}

}  // namespace contract
