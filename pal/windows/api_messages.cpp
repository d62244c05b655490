// Messages and timers.
#include <algorithm>

#include "pal/kernel/tick_count.h"
#include "pal/windows/window_calls.h"

using namespace pal;

namespace {

// Empty when there is no such window.
std::optional<MessageFilter> MakeFilter(State& state, HWND window, UINT first, UINT last) {
  MessageFilter filter{{}, first, last};
  if (!window) return filter;
  if (!state.desktop.Find(window)) return std::nullopt;
  filter.windows = state.desktop.WithDescendants(window);
  return filter;
}

// Messages whose parameters point into the sender's memory can be sent, but not left behind.
bool CanOnlyBeSent(UINT message) {
  constexpr UINT kWithPointers[] = {WM_CREATE, WM_NCCREATE, WM_SETTEXT, WM_GETTEXT, WM_COPYDATA};
  return std::find(std::begin(kWithPointers), std::end(kWithPointers), message) != std::end(kWithPointers);
}

// How long who sends something waits for its answer.
struct Patience {
  std::optional<Time> deadline = std::nullopt;
  UINT flags = SMTO_NORMAL;
  UINT limitMs = 0;
};

// Waits, handling meanwhile what others send to the caller; 0 or the error.
DWORD WaitUntil(State& state, Thread& self, const std::function<bool()>& done, std::optional<Time> deadline) {
  const std::function<bool()> isOver = [&] { return done() || self.queue.HasSent(); };
  while (!done()) {
    const Waited waited = state.scheduler.Wait(isOver, deadline);
    if (waited == Waited::kTimedOut) return ERROR_TIMEOUT;
    if (waited == Waited::kProgramEnds) return ERROR_OPERATION_ABORTED;
    if (!done()) HandleSentMessages(state, self);
  }
  return ERROR_SUCCESS;
}

// Until a window of another program looks at its messages, or is gone; 0 or the error.
DWORD WaitWhileHung(State& state, const Window& hung, const Patience& patience) {
  constexpr Time kCountsAsHung = std::chrono::seconds(5);
  const Time countsFrom = *hung.hungSince + kCountsAsHung;
  if ((patience.flags & SMTO_ABORTIFHUNG) && state.scheduler.Now() >= countsFrom) return ERROR_TIMEOUT;
  if (hung.awaitsAnswer) return ERROR_SUCCESS;
  std::optional<Time> deadline = patience.deadline;
  if (deadline && (patience.flags & SMTO_NOTIMEOUTIFNOTHUNG)) deadline = std::max(*deadline, countsFrom);
  const auto looks = [&state, window = hung.handle] {
    const Window* found = state.desktop.Find(window);
    return !found || !found->hungSince;
  };
  return WaitUntil(state, CallingThread("SendMessageW"), looks, deadline);
}

std::optional<LRESULT> SendToOther(State& state, const Window& window, UINT message, WPARAM wParam,
                                   LPARAM lParam, const Patience& patience) {
  const HWND handle = window.handle;
  if (window.hungSince)
    if (const DWORD error = WaitWhileHung(state, window, patience))
      return Refuse(error, std::optional<LRESULT>());
  const Window* found = state.desktop.Find(handle);
  if (!found) return Refuse(ERROR_INVALID_WINDOW_HANDLE, std::optional<LRESULT>());
  return SendToForeign(state, *found, message, wParam, lParam, patience.flags, patience.limitMs);
}

// Sends and waits for the answer. Empty, with a last error, when there is none.
std::optional<LRESULT> SendAndWait(State& state, HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                   const Patience& patience) {
  const Window* found = state.desktop.Find(window);
  if (!found) return Refuse(ERROR_INVALID_WINDOW_HANDLE, std::optional<LRESULT>());
  if (!found->thread) return SendToOther(state, *found, message, wParam, lParam, patience);
  Thread& self = CallingThread("SendMessageW");
  if (found->thread == &self) return CallWindow(state, window, message, wParam, lParam);

  const auto sent = SendToThread(state, *found->thread, window, message, wParam, lParam);
  const DWORD error = WaitUntil(
      state, self, [&] { return sent->answered; }, patience.deadline);
  if (error != ERROR_SUCCESS) return Refuse(error, std::optional<LRESULT>());
  if (!sent->result) SetLastError(ERROR_INVALID_WINDOW_HANDLE);
  return sent->result;
}

DWORD NotifyOwn(State& state, HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const Window* found = state.desktop.Find(window);
  if (!found) return ERROR_INVALID_WINDOW_HANDLE;
  if (!found->thread) {
    NotifyForeign(state, *found, message, wParam, lParam);
  } else if (found->thread == Scheduler::Current()) {
    CallWindow(state, window, message, wParam, lParam);
  } else {
    SendToThread(state, *found->thread, window, message, wParam, lParam);
  }
  return ERROR_SUCCESS;
}

// To every top-level window: one effect, and each is told.
void Broadcast(State& state, UINT message, WPARAM wParam, LPARAM lParam) {
  state.Emit(ForeignMessageSent{u"*", message, wParam, lParam, 0, {}, true});
  for (const HWND handle : state.desktop.TopLevel()) {
    const Window* window = state.desktop.Find(handle);
    if (!window) continue;  // an earlier one destroyed it
    if (window->thread) {
      NotifyOwn(state, handle, message, wParam, lParam);
    } else if (window->foreign) {
      state.scheduler.At(state.scheduler.Now(), [&state, handle, message, wParam, lParam] {
        const Window* there = state.desktop.Find(handle);  // still
        if (const auto handler = there ? there->foreign : nullptr) handler({message, wParam, lParam, 0, {}});
      });
    }
  }
}

}  // namespace

BOOL WINAPI GetMessageW(LPMSG message, HWND window, UINT first, UINT last) {
  const Call call("GetMessageW");
  if (call.Fails()) return -1;
  State& state = call.Get();
  Thread& self = CallingThread("GetMessageW");
  const std::optional<MessageFilter> filter = MakeFilter(state, window, first, last);
  if (!filter) return Refuse(ERROR_INVALID_WINDOW_HANDLE, -1);
  const std::function<bool()> hasWork = [&] {
    return self.queue.HasSent() || self.queue.Has(*filter, state.scheduler.Now());
  };
  while (!state.scheduler.IsEnding()) {
    HandleSentMessages(state, self);
    if (const std::optional<MSG> taken = self.queue.Take(*filter, state.scheduler.Now(), true)) {
      *message = *taken;
      return taken->message != WM_QUIT;
    }
    state.scheduler.Wait(hasWork, self.queue.NextTimer(*filter));
  }
  *message = {};
  message->message = WM_QUIT;
  return FALSE;
}

BOOL WINAPI PeekMessageW(LPMSG message, HWND window, UINT first, UINT last, UINT remove) {
  const Call call("PeekMessageW");
  if (call.Fails()) return FALSE;
  if (remove & ~PM_REMOVE) Die("PeekMessageW with an unknown flag");
  Thread& self = CallingThread("PeekMessageW");
  const std::optional<MessageFilter> filter = MakeFilter(call.Get(), window, first, last);
  if (!filter) return Refuse(ERROR_INVALID_WINDOW_HANDLE, FALSE);
  HandleSentMessages(call.Get(), self);
  const std::optional<MSG> taken = self.queue.Take(*filter, call->scheduler.Now(), remove == PM_REMOVE);
  if (!taken) return FALSE;
  *message = *taken;
  return TRUE;
}

DWORD WINAPI InSendMessageEx(LPVOID /*reserved*/) {
  const Call call;
  return CallingThread("InSendMessageEx").handlesSent ? ISMEX_SEND : ISMEX_NOSEND;
}

// No WM_CHAR comes of a key: nothing here looks at one.
BOOL WINAPI TranslateMessage(const MSG* message) {
  return message->message >= WM_KEYDOWN && message->message <= WM_SYSKEYUP;
}

LRESULT WINAPI DispatchMessageW(const MSG* message) {
  const Call call;
  return Dispatch(call.Get(), *message);
}

BOOL WINAPI PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const Call call("PostMessageW");
  if (call.Fails()) return FALSE;
  if (CanOnlyBeSent(message)) return Refuse(ERROR_MESSAGE_SYNC_ONLY, FALSE);
  if (window == HWND_BROADCAST) Die("PostMessageW to all windows");
  if (message == WM_NULL && call->menus.stale == window) call->menus.stale = nullptr;
  const DWORD error = PostTo(call.Get(), window, message, wParam, lParam);
  return error == ERROR_SUCCESS ? TRUE : Refuse(error, FALSE);
}

LRESULT WINAPI SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const Call call("SendMessageW");
  if (call.Fails()) return 0;
  return SendAndWait(call.Get(), window, message, wParam, lParam, {}).value_or(0);
}

LRESULT WINAPI SendMessageTimeoutW(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT flags,
                                   UINT timeoutMs, PDWORD_PTR result) {
  const Call call("SendMessageTimeoutW");
  if (call.Fails()) return 0;
  if (flags & ~(SMTO_BLOCK | SMTO_ABORTIFHUNG | SMTO_NOTIMEOUTIFNOTHUNG))
    Die("SendMessageTimeoutW with an unknown flag");
  if (window == HWND_BROADCAST) Die("SendMessageTimeoutW to all windows");
  const std::optional<Time> deadline = Deadline(call->scheduler.Now(), timeoutMs);
  const std::optional<LRESULT> answer =
      SendAndWait(call.Get(), window, message, wParam, lParam, {deadline, flags, timeoutMs});
  if (!answer) return 0;
  if (result) *result = static_cast<DWORD_PTR>(*answer);
  return TRUE;
}

BOOL WINAPI SendNotifyMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const Call call("SendNotifyMessageW");
  if (call.Fails()) return FALSE;
  if (CanOnlyBeSent(message)) return Refuse(ERROR_MESSAGE_SYNC_ONLY, FALSE);
  if (window == HWND_BROADCAST) {
    Broadcast(call.Get(), message, wParam, lParam);
    return TRUE;
  }
  const DWORD error = NotifyOwn(call.Get(), window, message, wParam, lParam);
  return error == ERROR_SUCCESS ? TRUE : Refuse(error, FALSE);
}

void WINAPI PostQuitMessage(int exitCode) {
  const Call call;
  CallingThread("PostQuitMessage").queue.PostQuit(exitCode);
}

LONG WINAPI GetMessageTime() {
  const Call call;
  return static_cast<LONG>(CallingThread("GetMessageTime").queue.TimeOfLast());
}

UINT WINAPI RegisterWindowMessageW(LPCWSTR name) {
  const Call call("RegisterWindowMessageW");
  if (call.Fails()) return 0;
  if (!name || !*name) return Refuse<UINT>(ERROR_INVALID_PARAMETER, 0);
  return call->desktop.RegisterMessage(name);
}

UINT_PTR WINAPI SetTimer(HWND window, UINT_PTR id, UINT periodMs, TIMERPROC callback) {
  const Call call("SetTimer");
  if (call.Fails()) return 0;
  Thread& self = CallingThread("SetTimer");
  if (window) {
    const Window* found = call->desktop.Find(window);
    if (!found) return Refuse<UINT_PTR>(ERROR_INVALID_WINDOW_HANDLE, 0);
    if (found->thread != &self) return Refuse<UINT_PTR>(ERROR_ACCESS_DENIED, 0);
  } else if (!self.queue.HasTimer(nullptr, id)) {
    id = call->desktop.lastFreeTimerId += 1;  // Windows chooses
  }
  const UINT period = std::clamp<UINT>(periodMs, USER_TIMER_MINIMUM, USER_TIMER_MAXIMUM);
  const Time length = std::chrono::milliseconds(period);
  self.queue.SetTimer({window, id, call->scheduler.Now() + length, length, callback});
  call->Emit(TimerSet{id, period, call->desktop.ClassOf(window)});
  return id != 0 ? id : 1;
}

BOOL WINAPI KillTimer(HWND window, UINT_PTR id) {
  const Call call("KillTimer");
  if (call.Fails()) return FALSE;
  if (!CallingThread("KillTimer").queue.KillTimer(window, id)) return Refuse(ERROR_INVALID_PARAMETER, FALSE);
  call->Emit(TimerKilled{id, call->desktop.ClassOf(window)});
  return TRUE;
}
