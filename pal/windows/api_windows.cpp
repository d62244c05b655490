// Window classes and windows.
#include <algorithm>
#include <cstring>
#include <utility>

#include "pal/windows/window_calls.h"

using namespace pal;

namespace {

constexpr DWORD kTopLevelWithChildStyle = 1406;  // ERROR_TLW_WITH_WSCHILD

int PositionOf(int value) {
  return value == CW_USEDEFAULT ? 0 : value;
}

// The window's place inside another one, or why it cannot have it; 0 when it can.
DWORD PlaceInside(State& state, HWND parent, DWORD style, HMENU menu, Window& window) {
  if (parent == HWND_MESSAGE) Die("a message-only window");
  if (parent && !state.desktop.Find(parent)) return ERROR_INVALID_WINDOW_HANDLE;
  if (!(style & WS_CHILD)) {
    if (menu) Die("a window with a menu bar");
    window.owner = parent;
    return ERROR_SUCCESS;
  }
  if (!parent) return kTopLevelWithChildStyle;
  window.parent = parent;
  window.id = reinterpret_cast<LONG_PTR>(menu);
  return ERROR_SUCCESS;
}

// Where the value of GetWindowLongPtrW's index lives; null when there is no such index.
LONG_PTR* NamedLong(Window& window, int index) {
  if (index == GWLP_ID) return &window.id;
  return index == GWLP_USERDATA ? &window.userData : nullptr;
}

bool IsInExtra(const Window& window, int index) {
  return index >= 0 && static_cast<size_t>(index) + sizeof(LONG_PTR) <= window.extra.size();
}

LRESULT SetText(State& state, Window& window, LPARAM text) {
  const std::u16string before =
      std::exchange(window.title, text ? reinterpret_cast<const WCHAR*>(text) : u"");
  const bool isLabel = window.parent && std::holds_alternative<StaticState>(window.control);
  if (isLabel && window.title != before && state.desktop.IsShown(window.handle))
    state.Emit(LabelChanged{state.desktop.Find(window.parent)->title, window.title});
  return TRUE;
}

LRESULT GetText(const Window& window, WPARAM size, LPARAM buffer) {
  if (size == 0) return 0;
  const size_t count = std::min<size_t>(window.title.size(), size - 1);
  auto* text = reinterpret_cast<WCHAR*>(buffer);
  std::copy_n(window.title.begin(), count, text);
  text[count] = 0;
  return static_cast<LRESULT>(count);
}

}  // namespace

ATOM WINAPI RegisterClassExW(const WNDCLASSEXW* windowClass) {
  const Call call("RegisterClassExW");
  if (call.Fails()) return 0;
  if (windowClass->cbSize != sizeof(WNDCLASSEXW) || windowClass->cbWndExtra < 0)
    return Refuse<ATOM>(ERROR_INVALID_PARAMETER, 0);
  if (windowClass->lpszMenuName) Die("a window class with a menu");
  constexpr ATOM kSome = 0xC001;  // nobody names a class by its number
  const bool isNew = call->desktop.AddClass(
      {windowClass->lpszClassName, windowClass->lpfnWndProc, windowClass->cbWndExtra, {}});
  return isNew ? kSome : Refuse<ATOM>(ERROR_CLASS_ALREADY_EXISTS, 0);
}

HWND WINAPI CreateWindowExW(DWORD exStyle, LPCWSTR className, LPCWSTR title, DWORD style, int x, int y,
                            int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                            LPVOID parameter) {
  const Call call("CreateWindowExW");
  if (call.Fails()) return nullptr;
  State& state = call.Get();
  Window window;
  window.windowClass = state.desktop.FindClass(className);
  if (!window.windowClass) return Refuse<HWND>(ERROR_CANNOT_FIND_WND_CLASS, nullptr);
  if (const DWORD error = PlaceInside(state, parent, style, menu, window))
    return Refuse<HWND>(error, nullptr);
  window.thread = &CallingThread("CreateWindowExW");
  window.procedure = window.windowClass->procedure;
  window.title = title ? title : u"";
  window.style = style;
  window.exStyle = exStyle;
  window.rect = {PositionOf(x), PositionOf(y), PositionOf(x) + PositionOf(width),
                 PositionOf(y) + PositionOf(height)};
  window.control = window.windowClass->control;
  window.extra.resize(static_cast<size_t>(window.windowClass->windowExtra));
  const HWND handle = state.desktop.Add(std::move(window)).handle;

  CREATESTRUCTW create{parameter, instance,  menu,   parent, height, width, y, x, static_cast<LONG>(style),
                       title,     className, exStyle};
  const auto lParam = reinterpret_cast<LPARAM>(&create);
  if (!CallWindow(state, handle, WM_NCCREATE, 0, lParam) ||
      CallWindow(state, handle, WM_CREATE, 0, lParam) == -1)
    Die("a procedure that refuses its window");
  return state.desktop.Find(handle) ? handle : nullptr;
}

BOOL WINAPI DestroyWindow(HWND window) {
  const Call call("DestroyWindow");
  if (call.Fails()) return FALSE;
  const Window* found = FindOrRefuse(call.Get(), window);
  if (!found) return FALSE;
  if (!found->thread || found->thread != Scheduler::Current()) return Refuse(ERROR_ACCESS_DENIED, FALSE);
  DestroyTree(call.Get(), window);
  return TRUE;
}

BOOL WINAPI IsWindow(HWND window) {
  const Call call;
  return FindOrRefuse(call.Get(), window) ? TRUE : FALSE;
}

LRESULT WINAPI DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_CLOSE) {
    DestroyWindow(window);
    return 0;
  }
  const Call call;
  Window* found = call->desktop.Find(window);
  if (!found) return 0;
  switch (message) {
    case WM_NCCREATE:
    case WM_QUERYENDSESSION:
      return TRUE;
    case WM_PAINT:  // nothing is drawn
      found->thread->queue.Validate(window);
      return 0;
    case WM_SETTEXT:
      return SetText(call.Get(), *found, lParam);
    case WM_GETTEXT:
      return GetText(*found, wParam, lParam);
    default:
      return 0;
  }
}

HWND WINAPI FindWindowW(LPCWSTR className, LPCWSTR title) {
  const Call call("FindWindowW");
  if (call.Fails()) return nullptr;
  for (const HWND handle : call->desktop.TopLevel()) {
    const Window& window = *call->desktop.Find(handle);
    const bool isOfClass = !className || SameName(window.windowClass->name, className);
    if (isOfClass && (!title || window.title == title)) return handle;
  }
  return nullptr;
}

HWND WINAPI GetDesktopWindow() {
  const Call call;
  return call->desktop.DesktopWindow();
}

BOOL WINAPI AllowSetForegroundWindow(DWORD process) {
  if (process != ASFW_ANY) Die("AllowSetForegroundWindow for one process");
  const Call call("AllowSetForegroundWindow");
  call->Emit(ForegroundSet{});
  return TRUE;
}

HWND WINAPI GetForegroundWindow() {
  const Call call;
  return call->desktop.Find(call->desktop.foreground) ? call->desktop.foreground : nullptr;
}

DWORD WINAPI GetWindowThreadProcessId(HWND window, LPDWORD process) {
  constexpr DWORD kOwn = 1;
  constexpr DWORD kOther = 2;
  const Call call;
  const Window* found = FindOrRefuse(call.Get(), window);
  if (!found) return 0;
  *process = found->thread ? kOwn : kOther;
  return *process;
}

BOOL WINAPI SetForegroundWindow(HWND window) {
  const Call call("SetForegroundWindow");
  if (call.Fails()) return FALSE;
  const Window* found = FindOrRefuse(call.Get(), window);
  if (!found) return FALSE;
  call->desktop.foreground = window;
  call->Emit(ForegroundSet{found->windowClass->name});
  return TRUE;
}

BOOL WINAPI GetWindowRect(HWND window, LPRECT rect) {
  const Call call;
  const Window* found = FindOrRefuse(call.Get(), window);
  if (!found) return FALSE;
  *rect = call->desktop.ScreenRect(*found);
  return TRUE;
}

BOOL WINAPI ScreenToClient(HWND window, LPPOINT point) {
  const Call call;
  const Window* found = FindOrRefuse(call.Get(), window);
  if (!found) return FALSE;
  const RECT rect = call->desktop.ScreenRect(*found);
  point->x -= rect.left;
  point->y -= rect.top;
  return TRUE;
}

LONG_PTR WINAPI GetWindowLongPtrW(HWND window, int index) {
  const Call call;
  Window* found = FindOrRefuse(call.Get(), window);
  if (!found) return 0;
  if (const LONG_PTR* value = NamedLong(*found, index)) return *value;
  if (IsInExtra(*found, index)) {
    LONG_PTR value = 0;
    std::memcpy(&value, found->extra.data() + index, sizeof(value));
    return value;
  }
  if (index != GWLP_WNDPROC) return Refuse<LONG_PTR>(ERROR_INVALID_INDEX, 0);
  return reinterpret_cast<LONG_PTR>(found->procedure);
}

LONG_PTR WINAPI SetWindowLongPtrW(HWND window, int index, LONG_PTR value) {
  const LONG_PTR before = GetWindowLongPtrW(window, index);
  const Call call;
  Window* found = FindOrRefuse(call.Get(), window);
  if (!found) return 0;
  SetLastError(ERROR_SUCCESS);
  if (LONG_PTR* named = NamedLong(*found, index)) {
    *named = value;
  } else if (IsInExtra(*found, index)) {
    std::memcpy(found->extra.data() + index, &value, sizeof(value));
  } else if (index == GWLP_WNDPROC) {
    found->procedure = reinterpret_cast<WNDPROC>(value);
  } else {
    return Refuse<LONG_PTR>(ERROR_INVALID_INDEX, 0);
  }
  return before;
}

// Pictures that Windows owns: what is never drawn needs no more than a value of its own.
HCURSOR WINAPI LoadCursorW(HINSTANCE instance, LPCWSTR name) {
  if (instance || !IS_INTRESOURCE(name)) Die("LoadCursorW of the program's own cursors");
  return reinterpret_cast<HCURSOR>(0x20000 + reinterpret_cast<ULONG_PTR>(name));
}
