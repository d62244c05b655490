// Windows of the program and of others, window classes and registered messages.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "pal/dialogs/controls.h"
#include "pal/machine/effects.h"

namespace pal {

struct SentMessage;
struct State;
struct Thread;

// A window of another program. The handler runs when a message reaches it and gives the message's result;
// `payload` holds the copied bytes of WM_COPYDATA. Every message is also an effect (ForeignMessageSent). What
// is sent is handled on the sender's thread, what is posted or broadcast as an event. A handler may call the
// machine, but not wait: At, Post and Emit, not Advance or Send.
struct ForeignMessage {
  UINT message = 0;
  WPARAM wParam = 0;
  LPARAM lParam = 0;
  uint64_t copyDataTag = 0;
  std::vector<uint8_t> payload;
};
using ForeignWindowHandler = std::function<LRESULT(const ForeignMessage&)>;

struct WindowClass {
  std::u16string name;
  WNDPROC procedure = nullptr;
  int windowExtra = 0;
  ControlState control = {};  // what its windows begin with
};

struct Window {
  HWND handle = nullptr;
  std::shared_ptr<const WindowClass> windowClass;
  Thread* thread = nullptr;                      // null for a window of another program
  ForeignWindowHandler foreign;                  // of a window of another program
  std::optional<Time> hungSince = std::nullopt;  // its program looks at no messages since then
  bool awaitsAnswer = false;                     // of somebody else, meanwhile
  WNDPROC procedure = nullptr;
  std::u16string title;
  DWORD style = 0;
  DWORD exStyle = 0;
  HWND parent = nullptr;  // of a child window
  HWND owner = nullptr;   // of a top-level window; it goes with its owner
  bool isDesktop = false;
  bool isBeingDestroyed = false;
  RECT rect{};      // of a child window: in the client area of its parent
  LONG_PTR id = 0;  // of a child window
  LONG_PTR userData = 0;
  std::vector<uint8_t> extra;  // cbWndExtra bytes
  ControlState control;        // of a control of Windows
  std::u16string givenName;    // that the program tells screen readers; empty: none
  std::set<UINT> admitted;     // messages that programs of lower rights may send it
  bool hearsOfSleep = false;   // it asked for that
  bool hearsOfSession = false;

  [[nodiscard]] bool IsTopLevel() const { return !parent && !isDesktop; }
};

// Names are compared without regard to case, as Windows does for classes and registered messages.
bool SameName(std::u16string_view a, std::u16string_view b);

class Desktop {
 public:
  explicit Desktop(State& state);

  // It comes to the front.
  HWND AddForeignWindow(std::u16string_view className, ForeignWindowHandler handler = {});
  void RemoveForeignWindow(HWND window);
  // The program of that window looks at no messages from now on, or does so again: who sends it something
  // waits. One that waits for an answer itself handles what is sent; Windows calls it hung all the same.
  void SetHung(HWND window, bool hung, bool awaitsAnswer = false);
  // The program's top-level window of that class, null when there is none.
  [[nodiscard]] HWND ProgramWindow(std::u16string_view className);
  // Sends or posts a message to a window of the program as another process would; a send is answered when the
  // program next looks for messages, and the clock runs until then. Returns empty when it was not answered in
  // `limit`; a limit of 0 does not wait, and an event may send so. The payload, and the structure to which
  // the lParam of a sent WM_DEVICECHANGE points, are copied. Post returns false when there is no such window
  // or its queue is full.
  std::optional<LRESULT> Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                              Time limit = std::chrono::seconds(30));
  std::optional<LRESULT> SendCopyData(HWND window, HWND sender, uint64_t tag,
                                      std::span<const uint8_t> payload,
                                      Time limit = std::chrono::seconds(30));
  bool Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  // ---- for the calls of Windows ----
  // False when a class of that name exists.
  bool AddClass(WindowClass windowClass);
  // Null when there is none.
  [[nodiscard]] std::shared_ptr<const WindowClass> FindClass(const WCHAR* name) const;

  Window& Add(Window window);  // gives it its handle
  [[nodiscard]] Window* Find(HWND handle);
  void Remove(HWND handle);
  // The name of the window's class; empty when there is no such window.
  [[nodiscard]] std::u16string ClassOf(HWND handle) const;
  // The newest first, as they lie on the desktop.
  [[nodiscard]] std::vector<HWND> TopLevel() const;
  [[nodiscard]] std::vector<HWND> Children(HWND parent) const;  // in the order of their creation
  [[nodiscard]] std::vector<HWND> Owned(HWND owner) const;
  [[nodiscard]] std::vector<HWND> OfThread(const Thread& thread) const;
  // The window and all that lie inside it.
  [[nodiscard]] std::vector<HWND> WithDescendants(HWND window) const;
  // Where the window lies on the screen. Windows have no frame here: the client area is the whole window.
  [[nodiscard]] RECT ScreenRect(const Window& window) const;
  // Whether it and all around it have the style WS_VISIBLE.
  [[nodiscard]] bool IsShown(HWND window) const;
  [[nodiscard]] HWND DesktopWindow() const { return desktopWindow_; }
  [[nodiscard]] int CountOfProgram() const;
  [[nodiscard]] bool Reaches(const Window& window, UINT message) const;

  // The window that gets the keyboard; null when there is none.
  [[nodiscard]] HWND Focus() const { return focus_; }
  void SetFocus(HWND window) { focus_ = window; }

  // The number of a registered message, the same for the same name.
  UINT RegisterMessage(std::u16string_view name);

  // The program is gone, the windows of others stay.
  void ForgetProgram();

  UINT dpi = 96;            // the display's scaling
  bool isElevated = false;  // the program has higher rights than all others
  // Windows has the screen: what programs inject goes nowhere.
  bool isLocked = false;

  POINT cursor = {512, 384};
  HWND foreground = nullptr;
  std::set<int> heldKeys;
  UINT_PTR lastFreeTimerId = 0;  // of timers without a window

 private:
  Window& NeedForeign(HWND window);
  std::optional<LRESULT> SendFromOutside(std::shared_ptr<SentMessage> sent, Time limit);

  State& state_;
  std::vector<std::shared_ptr<const WindowClass>> classes_;
  std::map<HWND, Window> windows_;  // in the order of their creation
  std::vector<std::u16string> messages_;
  uintptr_t lastHandle_ = 0x10000;
  HWND desktopWindow_ = nullptr;
  HWND focus_ = nullptr;
};

}  // namespace pal
