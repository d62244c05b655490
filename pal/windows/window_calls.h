// What the API's functions for windows and messages have in common. Called with the machine's lock, which is
// let go while a window procedure or a foreign window's handler runs.
#pragma once

#include <functional>
#include <optional>

#include "pal/machine/state.h"

namespace pal {

// The calling thread of the program; dies on any other.
Thread& CallingThread(const char* function);

LRESULT CallProcedure(State& state, WNDPROC procedure, HWND window, UINT message, WPARAM wParam,
                      LPARAM lParam);
// Calls the procedure of a window of the calling thread; 0 when the window is gone.
LRESULT CallWindow(State& state, HWND window, UINT message, WPARAM wParam, LPARAM lParam);
// Handles what others sent to windows of the calling thread.
void HandleSentMessages(State& state, Thread& self);
// DispatchMessageW.
LRESULT Dispatch(State& state, const MSG& message);
// The message loop of a message box, a menu or a modal dialog, until `isOver`. `dispatch` takes the place of
// Dispatch. Returns the exit code of a WM_QUIT that ended it, for MessageQueue::PostQuit when the caller is
// done.
std::optional<int> RunNestedLoop(State& state, Thread& self, const std::function<bool()>& isOver,
                                 const std::function<void(const MSG&)>& dispatch = {});

// The window of a box that the layer shows by itself, until RunNestedLoop is over; `style` beside WS_POPUP |
// WS_CAPTION.
HWND AddBoxWindow(State& state, Thread& self, std::u16string_view title, DWORD style, HWND owner);

// Null, and the last error set, when there is no such window.
Window* FindOrRefuse(State& state, HWND handle);

// Puts a message into the queue of messages that a thread handles before all others.
std::shared_ptr<SentMessage> SendToThread(State& state, Thread& thread, HWND window, UINT message,
                                          WPARAM wParam, LPARAM lParam);
// Puts a message into the queue of the window's thread; 0 or the error.
DWORD PostTo(State& state, HWND window, UINT message, WPARAM wParam, LPARAM lParam);
// A message to a window of another program becomes an effect, and its handler runs: at once and for its
// result, or soon, as an event.
LRESULT SendToForeign(State& state, const Window& window, UINT message, WPARAM wParam, LPARAM lParam,
                      UINT patience, UINT limitMs);
void NotifyForeign(State& state, const Window& window, UINT message, WPARAM wParam, LPARAM lParam);

// The procedure of dialogs, which asks that of the program first.
LRESULT CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
// Tab, Escape and Enter for a dialog or something in it; false: it was another message. Without the lock.
bool PressDialogKey(HWND dialog, const MSG& message);
// The control that the keyboard reaches next, in the order of the template.
HWND NextTabItem(HWND dialog, HWND control, bool previous);

// Destroys a window of the calling thread with all that hangs on it.
void DestroyTree(State& state, HWND window);

}  // namespace pal
