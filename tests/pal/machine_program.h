// A small program on a machine, for the tests of the machine.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "pal/machine.h"

using Log = std::vector<std::string>;

inline std::function<LRESULT(HWND, UINT, WPARAM, LPARAM)>& WindowHandler() {
  static std::function<LRESULT(HWND, UINT, WPARAM, LPARAM)> handler;
  return handler;
}

inline LRESULT CALLBACK HandledProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (WindowHandler() && message >= WM_COPYDATA) return WindowHandler()(window, message, wParam, lParam);
  return DefWindowProcW(window, message, wParam, lParam);
}

inline HWND MakeWindow(const WCHAR* className = TEXT("MachineTest")) {
  WNDCLASSEXW windowClass = {};
  windowClass.cbSize = sizeof(windowClass);
  windowClass.lpfnWndProc = HandledProcedure;
  windowClass.lpszClassName = className;
  RegisterClassExW(&windowClass);
  return CreateWindowExW(0, className, TEXT(""), WS_OVERLAPPEDWINDOW, 0, 0, 0, 0, nullptr, nullptr, nullptr,
                         nullptr);
}

inline int RunLoop() {
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
  return static_cast<int>(message.wParam);
}

inline HANDLE OpenPort(int number) {
  const std::u16string name = u"\\\\.\\COM" + std::u16string(1, static_cast<char16_t>(u'0' + number));
  const HANDLE port = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_OVERLAPPED, nullptr);
  COMMTIMEOUTS timeouts = {MAXDWORD, 0, 0, 10, 1000};
  if (port != INVALID_HANDLE_VALUE) SetCommTimeouts(port, &timeouts);
  return port;
}

// A thread of the program; the action lives as long as the test.
inline HANDLE StartThread(std::function<void()>& action) {
  return CreateThread(
      nullptr, 0,
      [](void* parameter) -> DWORD {
        (*static_cast<std::function<void()>*>(parameter))();
        return 0;
      },
      &action, 0, nullptr);
}

class MachineTest : public testing::Test {
 protected:
  // The program ends while everything that it uses is still there.
  void TearDown() override {
    machine_.reset();
    WindowHandler() = nullptr;
  }

  std::span<const uint8_t> BytesOf(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
  }

  std::optional<pal::Machine> machine_{std::in_place};
  pal::Machine& machine = *machine_;
};
