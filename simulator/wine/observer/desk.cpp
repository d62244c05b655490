// What stands around the tool: windows of other programs that report what reaches them, a mutex of another
// copy, and the taskbar.
#include <windows.h>

#include <shellapi.h>

#include <algorithm>
#include <map>
#include <stdexcept>
#include <thread>

#include "simulator/wine/observer/commands.h"

namespace observer {
namespace {

constexpr wchar_t kOwnClass[] = L"Veltra Observer";  // always there, hears what is told to everybody
constexpr wchar_t kTaskbarClass[] = L"Shell_TrayWnd";
std::map<std::wstring, HWND> windows;

UINT SwitchInputMessage() {
  static const UINT message = RegisterWindowMessageW(L"Veltra_SwitchInput");
  return message;
}

std::string Bytes(std::span<const uint8_t> bytes) {
  std::string text;
  for (const uint8_t byte : bytes) text.append(text.empty() ? "" : " ").append(Hex(byte, 2).substr(2));
  return text;
}

// A long payload is told by its beginning.
std::string DescribePayload(const COPYDATASTRUCT& data) {
  constexpr size_t kMostBytes = 64;
  const std::span bytes(static_cast<const uint8_t*>(data.lpData), data.lpData ? data.cbData : 0);
  if (bytes.size() <= kMostBytes) return Bytes(bytes);
  return Bytes(bytes.first(kMostBytes)) + " ... " + std::to_string(bytes.size()) + " bytes";
}

std::wstring received;  // the latest text that was copied to a window

// ---- the taskbar
// --------------------------------------------------------------------------------------

// A call for the notification area as it travels to the taskbar of this Windows.
struct IconRecord {
  LONG window;
  UINT id;
  UINT flags;
  UINT callbackMessage;
  WCHAR tip[128];
  DWORD state;
  DWORD stateMask;
  WCHAR info[256];
  UINT timeout;
  WCHAR infoTitle[64];
};
std::map<UINT, IconRecord> icons;

std::string Quoted(const wchar_t* text) {
  return std::string("\"").append(Utf8(text)).append("\"");
}

LRESULT OnIconCall(const COPYDATASTRUCT& data) {
  if (data.cbData < sizeof(IconRecord)) return FALSE;
  const auto& record = *static_cast<const IconRecord*>(data.lpData);
  const bool known = icons.contains(record.id);
  if (known == (data.dwData == NIM_ADD) || data.dwData > NIM_DELETE) return FALSE;
  std::string words = "tray " + std::to_string(record.id);
  if (data.dwData == NIM_ADD) words += " added";
  if (data.dwData == NIM_DELETE) words += " removed";
  if (record.flags & NIF_TIP) words += " tooltip " + Quoted(record.tip);
  if (record.flags & NIF_INFO) words += " balloon " + Quoted(record.infoTitle) + ": " + Utf8(record.info);
  ReportEvent(words);
  if (data.dwData == NIM_ADD) icons[record.id] = record;
  if (data.dwData == NIM_DELETE) icons.erase(record.id);
  return TRUE;
}

std::string RunTray(const Words& words) {
  const auto icon = icons.find(static_cast<UINT>(Number(words[1])));
  if (icon == icons.end()) throw std::runtime_error("the icon is not there");
  const auto touch = [&](std::initializer_list<LPARAM> messages) {
    for (const LPARAM message : messages)
      PostMessageW(reinterpret_cast<HWND>(static_cast<LONG_PTR>(icon->second.window)),
                   icon->second.callbackMessage, icon->first, message);
  };
  if (words[2] == "right") touch({WM_RBUTTONDOWN, WM_RBUTTONUP});
  if (words[2] != "right") touch({WM_LBUTTONDOWN, WM_LBUTTONUP});
  if (words[2] == "double") touch({WM_LBUTTONDBLCLK, WM_LBUTTONUP});
  return {};
}

// ---- windows
// ------------------------------------------------------------------------------------------

LRESULT CALLBACK WatchedProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const std::wstring name = ClassOf(window);
  std::string parameters(" ");
  parameters.append(std::to_string(wParam)).append(" ").append(std::to_string(lParam));
  const std::string receiver = std::string(" to ").append(Utf8(name));
  if (message == WM_COPYDATA) {
    const auto& data = *reinterpret_cast<const COPYDATASTRUCT*>(lParam);
    if (name == kTaskbarClass) return OnIconCall(data);
    if (data.lpData) received.assign(static_cast<const wchar_t*>(data.lpData), data.cbData / sizeof(wchar_t));
    ReportEvent("data " + std::to_string(data.dwData) + receiver + ": " + DescribePayload(data));
    return TRUE;
  }
  // Numbered as the first message that is registered on the simulated tablet.
  if (message == SwitchInputMessage())
    ReportEvent((name == kOwnClass ? "notify 0xC000" : "message 0xC000" + receiver) + parameters);
  else if (message == WM_COMMAND || (message >= WM_APP && message < 0xC000))
    ReportEvent("message " + Hex(message, 4) + receiver + parameters);
  else
    return DefWindowProcW(window, message, wParam, lParam);
  return 0;
}

HWND Open(const std::wstring& className) {
  HWND& window = windows[className];
  if (window) return window;
  WNDCLASSEXW windowClass = {};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = WatchedProc;
  windowClass.hInstance = GetModuleHandleW(nullptr);
  windowClass.lpszClassName = className.c_str();
  RegisterClassExW(&windowClass);  // fails harmlessly when the window was open before
  window = CreateWindowExW(0, className.c_str(), className.c_str(), WS_OVERLAPPEDWINDOW, 0, 0, 100, 100,
                           nullptr, nullptr, windowClass.hInstance, nullptr);
  if (!window) throw std::runtime_error("no window of that class");
  return window;
}

std::string RunOpen(const Words& words) {
  Open(Wide(words[1]));
  return {};
}

std::string RunClose(const Words& words) {
  const auto window = windows.find(Wide(words[1]));
  if (window == windows.end()) return "no";
  SendMessageW(window->second, WM_CLOSE, 0, 0);  // it may be of another thread
  windows.erase(window);
  return "yes";
}

// Its window goes to a thread that looks at no messages until it is woken.
std::map<std::wstring, HANDLE> wakers;

std::string RunHang(const Words& words) {
  RunClose(words);
  const std::wstring name = Wide(words[1]);
  const HANDLE isOpen = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  const HANDLE isWoken = wakers[name] = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  std::thread([=] {
    Open(name);
    SetEvent(isOpen);
    WaitForSingleObject(isWoken, INFINITE);
    MSG message = {};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
  }).detach();
  WaitForSingleObject(isOpen, INFINITE);
  return {};
}

std::string RunWake(const Words& words) {
  SetEvent(wakers.at(Wide(words[1])));
  return {};
}

// A window with a text field in it, which gets the keyboard.
std::string RunField(const Words& words) {
  const HWND window = Open(Wide(words[1]));
  const HWND field = CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, 0, 0, 90, 20,
                                     window, nullptr, GetModuleHandleW(nullptr), nullptr);
  ShowWindow(window, SW_SHOW);
  SetForegroundWindow(window);
  if (!field || !SetFocus(field)) throw std::runtime_error("no text field with the keyboard");
  return {};
}

std::string RunHold(const Words& words) {
  if (!CreateMutexW(nullptr, FALSE, Wide(words[1]).c_str())) throw std::runtime_error("no such mutex");
  return {};
}

std::string RunWatch(const Words&) {
  Open(kOwnClass);
  Open(kTaskbarClass);
  return {};
}

std::string RunReceived(const Words&) {
  std::string text = Utf8(received.substr(0, received.find(L'\0')));
  std::ranges::replace(text, '\n', '\x1E');
  return text;
}

constexpr Command kCommands[] = {
    {"watch", 0, RunWatch},        // becomes the taskbar, and hears what is told to everybody
    {"open", 1, RunOpen},          // CLASS: a watched window of that class
    {"close", 1, RunClose},        // CLASS: yes, or no
    {"hang", 1, RunHang},          // CLASS: opens it again
    {"wake", 1, RunWake},          // CLASS
    {"field", 1, RunField},        // CAPTION
    {"hold", 1, RunHold},          // NAME: a mutex
    {"received", 0, RunReceived},  // the latest copied text, its line ends as 1E
    {"tray", 2, RunTray},          // ICON click|double|right
};

}  // namespace

std::span<const Command> DeskCommands() {
  return kCommands;
}

}  // namespace observer
