#include "tests/windows/observer/hung_windows.h"

#include <windows.h>

#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "base/handles.h"

namespace observer {
namespace {

class HungWindow {
 public:
  explicit HungWindow(const std::wstring& className)
      : ready_(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
        end_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
    thread_ = std::thread([this, className] { Hang(className); });
    WaitForSingleObject(ready_.Get(), INFINITE);
  }
  ~HungWindow() {
    SetEvent(end_.Get());
    thread_.join();
  }
  HungWindow(const HungWindow&) = delete;
  HungWindow& operator=(const HungWindow&) = delete;

  [[nodiscard]] bool IsThere() const { return window_ != nullptr; }

 private:
  void Hang(const std::wstring& className) {
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = className.c_str();
    RegisterClassExW(&windowClass);  // fails harmlessly when the window was open before
    window_ = CreateWindowExW(0, className.c_str(), className.c_str(), 0, 0, 0, 0, 0, nullptr, nullptr,
                              windowClass.hInstance, nullptr);
    SetEvent(ready_.Get());
    WaitForSingleObject(end_.Get(), INFINITE);
    if (window_) DestroyWindow(window_);
  }

  veltra::UniqueKernelObject ready_;
  veltra::UniqueKernelObject end_;
  HWND window_ = nullptr;
  std::thread thread_;
};

std::vector<std::unique_ptr<HungWindow>> windows;

}  // namespace

void OpenHungWindow(const std::wstring& className) {
  auto window = std::make_unique<HungWindow>(className);
  if (!window->IsThere()) throw std::runtime_error("no window of that class");
  windows.push_back(std::move(window));
}

void CloseHungWindows() {
  windows.clear();
}

}  // namespace observer
