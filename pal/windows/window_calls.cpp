#include "pal/windows/window_calls.h"

#include "pal/kernel/tick_count.h"

namespace pal {
namespace {

// What a foreign window is told, and what the stream of effects keeps of it.
ForeignMessage CopyForForeign(UINT message, WPARAM wParam, LPARAM lParam) {
  ForeignMessage copy{message, wParam, lParam, 0, {}};
  if (message != WM_COPYDATA || lParam == 0) return copy;
  const auto& data = *reinterpret_cast<const COPYDATASTRUCT*>(lParam);
  const auto* bytes = static_cast<const uint8_t*>(data.lpData);
  copy.copyDataTag = data.dwData;
  if (bytes) copy.payload.assign(bytes, bytes + data.cbData);
  return copy;
}

void EmitForeign(State& state, const Window& window, const ForeignMessage& message, bool isPosted,
                 UINT patience, UINT limitMs) {
  // The pointer of copied data says nothing, and differs from run to run.
  const int64_t lParam = message.message == WM_COPYDATA ? 0 : message.lParam;
  state.Emit(ForeignMessageSent{window.windowClass->name, message.message, message.wParam, lParam,
                                message.copyDataTag, message.payload, isPosted, patience, limitMs});
}

template <class Action>
void ForEachInside(State& state, HWND window, Action action) {
  for (const HWND child : state.desktop.Children(window)) action(child);
}

void SendDestroy(State& state, HWND window) {
  CallWindow(state, window, WM_DESTROY, 0, 0);
  ForEachInside(state, window, [&](HWND child) { SendDestroy(state, child); });
}

void Free(State& state, HWND window) {
  ForEachInside(state, window, [&](HWND child) { Free(state, child); });
  CallWindow(state, window, WM_NCDESTROY, 0, 0);
  const Window* found = state.desktop.Find(window);
  if (!found) return;
  found->thread->queue.Forget(window);
  state.desktop.Remove(window);
}

// While it lives the thread is at work on what was sent, or on what was not.
class AtWork {
 public:
  AtWork(Thread& thread, bool isSent) : thread_(thread), before_(std::exchange(thread.handlesSent, isSent)) {}
  ~AtWork() { thread_.handlesSent = before_; }
  AtWork(const AtWork&) = delete;
  AtWork& operator=(const AtWork&) = delete;

 private:
  Thread& thread_;
  bool before_;
};

}  // namespace

Thread& CallingThread(const char* function) {
  Thread* self = Scheduler::Current();
  if (!self) Die(std::string(function) + " outside the program's threads");
  return *self;
}

LRESULT CallProcedure(State& state, WNDPROC procedure, HWND window, UINT message, WPARAM wParam,
                      LPARAM lParam) {
  const MachineMutex::Open open(state.mutex);
  return procedure(window, message, wParam, lParam);
}

LRESULT CallWindow(State& state, HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const Window* found = state.desktop.Find(window);
  return found ? CallProcedure(state, found->procedure, window, message, wParam, lParam) : 0;
}

void HandleSentMessages(State& state, Thread& self) {
  const AtWork working(self, true);
  while (const std::shared_ptr<SentMessage> sent = self.queue.TakeSent()) {
    const Window* window = state.desktop.Find(sent->window);
    if (window)
      sent->result =
          CallProcedure(state, window->procedure, sent->window, sent->message, sent->wParam, sent->lParam);
    sent->answered = true;
    state.scheduler.Notify();
    state.scheduler.NotifyOutside();
  }
}

LRESULT Dispatch(State& state, const MSG& message) {
  const AtWork working(CallingThread("DispatchMessageW"), false);
  if (message.message == kPersonActs) {
    const auto act = state.dialogs.acts.extract(message.wParam);
    const MachineMutex::Open open(state.mutex);
    if (act) act.mapped()();
    return 0;
  }
  if (message.message == WM_TIMER && message.lParam != 0) {
    const auto callback = reinterpret_cast<TIMERPROC>(message.lParam);
    const DWORD time = TickCount(state.scheduler.Now());
    const MachineMutex::Open open(state.mutex);
    callback(message.hwnd, WM_TIMER, message.wParam, time);
    return 0;
  }
  return CallWindow(state, message.hwnd, message.message, message.wParam, message.lParam);
}

std::optional<int> RunNestedLoop(State& state, Thread& self, const std::function<bool()>& isOver,
                                 const std::function<void(const MSG&)>& dispatch) {
  const MessageFilter everything;
  const std::function<bool()> hasWork = [&] {
    return isOver() || self.queue.HasSent() || self.queue.Has(everything, state.scheduler.Now());
  };
  while (!isOver() && !state.scheduler.IsEnding()) {
    if (self.queue.HasSent()) {
      HandleSentMessages(state, self);
    } else if (const std::optional<MSG> message = self.queue.Take(everything, state.scheduler.Now(), true)) {
      if (message->message == WM_QUIT) return static_cast<int>(message->wParam);
      if (dispatch)
        dispatch(*message);
      else
        Dispatch(state, *message);
    } else {
      state.scheduler.Wait(hasWork, self.queue.NextTimer(everything));
    }
  }
  return std::nullopt;
}

HWND AddBoxWindow(State& state, Thread& self, std::u16string_view title, DWORD style, HWND owner) {
  Window window;
  window.windowClass = std::make_shared<const WindowClass>(WindowClass{u"#32770", DefWindowProcW, 0, {}});
  window.thread = &self;
  window.procedure = DefWindowProcW;
  window.title = title;
  window.style = WS_POPUP | WS_CAPTION | style;
  window.owner = owner;
  return state.desktop.Add(std::move(window)).handle;
}

Window* FindOrRefuse(State& state, HWND handle) {
  Window* window = state.desktop.Find(handle);
  if (!window) SetLastError(ERROR_INVALID_WINDOW_HANDLE);
  return window;
}

std::shared_ptr<SentMessage> SendToThread(State& state, Thread& thread, HWND window, UINT message,
                                          WPARAM wParam, LPARAM lParam) {
  auto sent = std::make_shared<SentMessage>(SentMessage{window, message, wParam, lParam, {}});
  thread.queue.Send(sent);
  state.scheduler.Notify();
  return sent;
}

DWORD PostTo(State& state, HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  Thread* thread = nullptr;
  if (window) {
    const Window* found = state.desktop.Find(window);
    if (!found) return ERROR_INVALID_WINDOW_HANDLE;
    if (!found->thread) {
      NotifyForeign(state, *found, message, wParam, lParam);
      return ERROR_SUCCESS;
    }
    thread = found->thread;
  } else {
    thread = &CallingThread("PostMessageW without a window");
  }
  const MSG posted{window, message, wParam, lParam, TickCount(state.scheduler.Now()), {0, 0}};
  if (!thread->queue.Post(posted)) return ERROR_NOT_ENOUGH_QUOTA;
  state.scheduler.Notify();
  return ERROR_SUCCESS;
}

LRESULT SendToForeign(State& state, const Window& window, UINT message, WPARAM wParam, LPARAM lParam,
                      UINT patience, UINT limitMs) {
  const ForeignMessage copy = CopyForForeign(message, wParam, lParam);
  EmitForeign(state, window, copy, false, patience, limitMs);
  if (!window.foreign) return 0;
  const ForeignWindowHandler handler = window.foreign;
  const MachineMutex::Open open(state.mutex);
  return handler(copy);
}

void NotifyForeign(State& state, const Window& window, UINT message, WPARAM wParam, LPARAM lParam) {
  ForeignMessage copy = CopyForForeign(message, wParam, lParam);
  EmitForeign(state, window, copy, true, 0, 0);
  if (!window.foreign) return;
  state.scheduler.At(state.scheduler.Now(),
                     [handler = window.foreign, copy = std::move(copy)] { handler(copy); });
}

void DestroyTree(State& state, HWND window) {
  for (const HWND owned : state.desktop.Owned(window)) DestroyTree(state, owned);
  Window* found = state.desktop.Find(window);
  if (!found || found->isBeingDestroyed) return;
  found->isBeingDestroyed = true;
  SendDestroy(state, window);
  Free(state, window);
  state.scheduler.Notify();  // who waits for an answer from it waits no longer
}

}  // namespace pal
