// The messages and timers of one thread.
#pragma once

#include <windows.h>

#include <deque>
#include <memory>
#include <optional>
#include <vector>

#include "pal/machine/effects.h"

namespace pal {

// A message that somebody sent from elsewhere to a window of the thread.
struct SentMessage {
  HWND window = nullptr;
  UINT message = 0;
  WPARAM wParam = 0;
  LPARAM lParam = 0;
  std::vector<uint8_t> copied;  // what lParam points to, when the sender may be gone before it is handled
  bool answered = false;        // handled, or the window is gone
  std::optional<LRESULT> result = std::nullopt;  // empty when the window is gone
};

struct WindowTimer {
  HWND window = nullptr;
  UINT_PTR id = 0;
  Time due{0};
  Time period{0};
  TIMERPROC callback = nullptr;
};

// What GetMessage and PeekMessage ask for.
struct MessageFilter {
  std::vector<HWND> windows;  // of these windows only; null stands for messages without a window. Empty: all
  UINT first = 0;
  UINT last = 0;  // both 0: every message

  [[nodiscard]] bool Wants(HWND window, UINT message) const;
};

class MessageQueue {
 public:
  static constexpr size_t kPostLimit = 10'000;  // what Windows allows unless its registry says otherwise

  // False when the limit is reached.
  bool Post(const MSG& message);
  void PostQuit(int exitCode) { quit_ = exitCode; }
  void Send(std::shared_ptr<SentMessage> message) { sent_.push_back(std::move(message)); }

  // Whether Take would find a message at that time.
  [[nodiscard]] bool Has(const MessageFilter& filter, Time now) const;
  // Posted messages first, then WM_QUIT whatever the filter says, then WM_PAINT, then the timer that is due
  // the longest.
  // With `remove` false the message stays where it is.
  std::optional<MSG> Take(const MessageFilter& filter, Time now, bool remove);
  // When the message that was taken last came into the queue.
  [[nodiscard]] DWORD TimeOfLast() const { return timeOfLast_; }
  [[nodiscard]] bool HasSent() const { return !sent_.empty(); }
  std::shared_ptr<SentMessage> TakeSent();  // null when there is none
  [[nodiscard]] size_t PostedCount() const { return posted_.size(); }

  // A timer with the same window and id is replaced.
  void SetTimer(const WindowTimer& timer);
  bool KillTimer(HWND window, UINT_PTR id);
  [[nodiscard]] bool HasTimer(HWND window, UINT_PTR id) const;
  // When the next timer that the filter wants is due.
  [[nodiscard]] std::optional<Time> NextTimer(const MessageFilter& filter) const;
  [[nodiscard]] size_t TimerCount() const { return timers_.size(); }

  // A window of the thread must be painted, or has been. WM_PAINT comes as long as it must.
  void Invalidate(HWND window);
  void Validate(HWND window);
  [[nodiscard]] bool MustPaint(HWND window) const;

  // A window is gone: its posted messages and timers go with it, and who sent it something gets no answer.
  void Forget(HWND window);
  // The thread is gone.
  void Clear();

 private:
  std::optional<MSG> TakeNext(const MessageFilter& filter, Time now, bool remove);
  [[nodiscard]] size_t FindPosted(const MessageFilter& filter) const;  // posted_.size() when there is none
  [[nodiscard]] HWND FindToPaint(const MessageFilter& filter) const;   // null when there is none
  [[nodiscard]] size_t FindDueTimer(const MessageFilter& filter,
                                    Time now) const;  // timers_.size() when there is none

  std::deque<MSG> posted_;
  std::deque<std::shared_ptr<SentMessage>> sent_;
  std::vector<HWND> toPaint_;
  std::vector<WindowTimer> timers_;
  std::optional<int> quit_;
  DWORD timeOfLast_ = 0;
};

}  // namespace pal
