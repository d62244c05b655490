// Watches the tool from another process of the same desktop: sees every injected mouse button and key, owns
// windows that report what reaches them, and does on command what neighbours of the tool do. Commands come on
// standard input, events and answers go to standard output, one a line. It ends with its input.
#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <iostream>
#include <string>
#include <thread>

#include "simulator/wine/observer/commands.h"

namespace {

struct MouseAction {
  WPARAM message;
  const char* words;
};

constexpr MouseAction kMouseActions[] = {
    {WM_LBUTTONDOWN, "left down"}, {WM_LBUTTONUP, "left up"},       {WM_RBUTTONDOWN, "right down"},
    {WM_RBUTTONUP, "right up"},    {WM_MBUTTONDOWN, "middle down"}, {WM_MBUTTONUP, "middle up"},
};

// Told before the pointer has moved. Windows also tells of the pointer when it stands still.
void ReportMove(POINT target) {
  POINT place = {};
  GetCursorPos(&place);
  const std::string x = std::to_string(target.x - place.x);
  const std::string y = std::to_string(target.y - place.y);
  if (target.x != place.x || target.y != place.y)
    observer::ReportEvent(std::string("mouse move ").append(x).append(" ").append(y));
}

LRESULT CALLBACK OnMouse(int code, WPARAM message, LPARAM data) {
  if (code == HC_ACTION)
    for (const MouseAction& row : kMouseActions)
      if (row.message == message) observer::ReportEvent(std::string("mouse ") + row.words);
  if (code == HC_ACTION && message == WM_MOUSEMOVE)
    ReportMove(reinterpret_cast<const MSLLHOOKSTRUCT*>(data)->pt);
  return CallNextHookEx(nullptr, code, message, data);
}

LRESULT CALLBACK OnKey(int code, WPARAM message, LPARAM data) {
  if (code == HC_ACTION) {
    const auto& key = *reinterpret_cast<const KBDLLHOOKSTRUCT*>(data);
    const bool up = message == WM_KEYUP || message == WM_SYSKEYUP;
    observer::ReportEvent("key " + observer::Hex(key.vkCode, 2) + (up ? " up" : " down"));
  }
  return CallNextHookEx(nullptr, code, message, data);
}

// Commands run on the main thread, which owns the windows and the hooks: the reader hands each over and
// waits.
constexpr UINT kRunCommand = WM_USER + 1;

void ReadCommands(HWND runner) {
  std::string line;
  while (std::getline(std::cin, line)) SendMessageW(runner, kRunCommand, 0, reinterpret_cast<LPARAM>(&line));
  PostMessageW(runner, WM_CLOSE, 0, 0);
}

LRESULT CALLBACK RunnerProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == kRunCommand) {
    observer::RunCommand(*reinterpret_cast<const std::string*>(lParam));
    return 0;
  }
  if (message == WM_CLOSE) PostQuitMessage(0);
  return DefWindowProcW(window, message, wParam, lParam);
}

HWND MakeRunner() {
  WNDCLASSEXW windowClass = {};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = RunnerProc;
  windowClass.hInstance = GetModuleHandleW(nullptr);
  windowClass.lpszClassName = L"Veltra Observer Runner";
  RegisterClassExW(&windowClass);
  return CreateWindowExW(0, windowClass.lpszClassName, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                         windowClass.hInstance, nullptr);
}

}  // namespace

int main() {
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stdin), _O_BINARY);
  const HWND runner = MakeRunner();
  const HINSTANCE instance = GetModuleHandleW(nullptr);
  const HHOOK mouse = SetWindowsHookExW(WH_MOUSE_LL, OnMouse, instance, 0);
  const HHOOK keyboard = SetWindowsHookExW(WH_KEYBOARD_LL, OnKey, instance, 0);
  if (!runner || !mouse || !keyboard) return 1;
  observer::Report("ready");

  std::thread reader(ReadCommands, runner);
  MSG message = {};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  reader.join();
  UnhookWindowsHookEx(keyboard);
  UnhookWindowsHookEx(mouse);
  return 0;
}
