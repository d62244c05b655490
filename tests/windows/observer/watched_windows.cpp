#include "tests/windows/observer/watched_windows.h"

#include <map>
#include <span>
#include <stdexcept>

#include "tests/windows/observer/report.h"

namespace observer {
namespace {

std::map<std::wstring, HWND> windows;

std::wstring ClassOf(HWND window) {
  wchar_t name[256] = {};
  const int length = GetClassNameW(window, name, static_cast<int>(std::size(name)));
  return {name, static_cast<size_t>(length)};
}

UINT SwitchInputMessage() {
  static const UINT message = RegisterWindowMessageW(L"Veltra_SwitchInput");
  return message;
}

// A window of this class answers each report with the request for another one, before it is done with the
// first.
constexpr wchar_t kAsksAgain[] = L"Asks Again";
constexpr UINT kDeviceReportRequest = WM_APP + 0x76D;
constexpr WPARAM kNoItems = 2;

void ReportCopiedData(const std::string& name, HWND sender, const COPYDATASTRUCT& data) {
  const std::span bytes(static_cast<const uint8_t*>(data.lpData), data.lpData ? data.cbData : 0);
  Report({"copied", name, std::to_string(data.dwData), Hex(bytes), Utf8(ClassOf(sender))});
}

LRESULT CALLBACK WatchedProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const std::string name = Utf8(ClassOf(window));
  if (message == SwitchInputMessage()) {
    Report({"switch-input", name, std::to_string(wParam), std::to_string(lParam)});
    return 0;
  }
  if (message == WM_COPYDATA) {
    const HWND sender = reinterpret_cast<HWND>(wParam);
    ReportCopiedData(name, sender, *reinterpret_cast<const COPYDATASTRUCT*>(lParam));
    if (ClassOf(window) == kAsksAgain)
      SendMessageW(sender, kDeviceReportRequest, kNoItems, reinterpret_cast<LPARAM>(window));
    return TRUE;
  }
  if (message == WM_COMMAND) {
    Report({"command", name, std::to_string(wParam)});
    return 0;
  }
  if (message >= WM_APP && message < 0xC000) {
    Report({"message", name, std::to_string(message), std::to_string(wParam), std::to_string(lParam)});
    return 0;
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace

HWND OwnWindow() {
  return windows.at(kOwnClass);
}

void OpenWatchedWindow(const std::wstring& className) {
  if (windows.contains(className)) return;
  WNDCLASSEXW windowClass = {};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = WatchedProc;
  windowClass.hInstance = GetModuleHandleW(nullptr);
  windowClass.lpszClassName = className.c_str();
  RegisterClassExW(&windowClass);  // fails harmlessly when the window was open before
  const HWND window = CreateWindowExW(0, className.c_str(), className.c_str(), WS_OVERLAPPEDWINDOW, 0, 0, 100,
                                      100, nullptr, nullptr, windowClass.hInstance, nullptr);
  if (!window) throw std::runtime_error("no window of that class");
  windows[className] = window;
}

void OpenTextField(const std::wstring& caption) {
  OpenWatchedWindow(caption);
  const HWND window = windows.at(caption);
  const HWND field = CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, 0, 0, 90, 20,
                                     window, nullptr, GetModuleHandleW(nullptr), nullptr);
  ShowWindow(window, SW_SHOW);
  SetForegroundWindow(window);
  if (!field || !SetFocus(field)) throw std::runtime_error("no text field with the keyboard");
}

void CloseWatchedWindows() {
  std::erase_if(windows,
                [](const auto& entry) { return entry.first != kOwnClass && DestroyWindow(entry.second); });
}

}  // namespace observer
