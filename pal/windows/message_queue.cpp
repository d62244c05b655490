#include "pal/windows/message_queue.h"

#include <algorithm>

#include "pal/kernel/tick_count.h"

namespace pal {
namespace {

bool Is(const WindowTimer& timer, HWND window, UINT_PTR id) {
  return timer.window == window && timer.id == id;
}

}  // namespace

bool MessageFilter::Wants(HWND window, UINT message) const {
  if (!windows.empty() && std::find(windows.begin(), windows.end(), window) == windows.end()) return false;
  return (first == 0 && last == 0) || (first <= message && message <= last);
}

bool MessageQueue::Post(const MSG& message) {
  if (posted_.size() >= kPostLimit) return false;
  posted_.push_back(message);
  return true;
}

size_t MessageQueue::FindPosted(const MessageFilter& filter) const {
  size_t index = 0;
  while (index < posted_.size() && !filter.Wants(posted_[index].hwnd, posted_[index].message)) ++index;
  return index;
}

HWND MessageQueue::FindToPaint(const MessageFilter& filter) const {
  const auto found =
      std::ranges::find_if(toPaint_, [&](HWND window) { return filter.Wants(window, WM_PAINT); });
  return found == toPaint_.end() ? nullptr : *found;
}

size_t MessageQueue::FindDueTimer(const MessageFilter& filter, Time now) const {
  size_t earliest = timers_.size();
  for (size_t index = 0; index < timers_.size(); ++index) {
    const WindowTimer& timer = timers_[index];
    if (timer.due > now || !filter.Wants(timer.window, WM_TIMER)) continue;
    if (earliest == timers_.size() || timer.due < timers_[earliest].due) earliest = index;
  }
  return earliest;
}

bool MessageQueue::Has(const MessageFilter& filter, Time now) const {
  return quit_ || FindPosted(filter) < posted_.size() || FindToPaint(filter) ||
         FindDueTimer(filter, now) < timers_.size();
}

std::optional<MSG> MessageQueue::Take(const MessageFilter& filter, Time now, bool remove) {
  const std::optional<MSG> message = TakeNext(filter, now, remove);
  if (message && remove) timeOfLast_ = message->time;
  return message;
}

std::optional<MSG> MessageQueue::TakeNext(const MessageFilter& filter, Time now, bool remove) {
  if (const size_t index = FindPosted(filter); index < posted_.size()) {
    const MSG message = posted_[index];
    if (remove) posted_.erase(posted_.begin() + static_cast<std::ptrdiff_t>(index));
    return message;
  }
  MSG message{};
  message.time = TickCount(now);
  if (quit_) {
    message.message = WM_QUIT;
    message.wParam = static_cast<WPARAM>(*quit_);
    if (remove) quit_.reset();
    return message;
  }
  if (const HWND window = FindToPaint(filter)) {
    message.hwnd = window;
    message.message = WM_PAINT;
    return message;
  }
  const size_t index = FindDueTimer(filter, now);
  if (index == timers_.size()) return std::nullopt;
  WindowTimer& timer = timers_[index];
  message.hwnd = timer.window;
  message.message = WM_TIMER;
  message.wParam = timer.id;
  message.lParam = reinterpret_cast<LPARAM>(timer.callback);
  // However late it is taken, one message stands for all that were missed, and the rhythm stays.
  if (remove) timer.due += timer.period * ((now - timer.due) / timer.period + 1);
  return message;
}

std::shared_ptr<SentMessage> MessageQueue::TakeSent() {
  if (sent_.empty()) return nullptr;
  std::shared_ptr<SentMessage> message = std::move(sent_.front());
  sent_.pop_front();
  return message;
}

void MessageQueue::SetTimer(const WindowTimer& timer) {
  KillTimer(timer.window, timer.id);
  timers_.push_back(timer);
}

bool MessageQueue::KillTimer(HWND window, UINT_PTR id) {
  return std::erase_if(timers_, [&](const WindowTimer& timer) { return Is(timer, window, id); }) > 0;
}

bool MessageQueue::HasTimer(HWND window, UINT_PTR id) const {
  return std::any_of(timers_.begin(), timers_.end(),
                     [&](const WindowTimer& timer) { return Is(timer, window, id); });
}

std::optional<Time> MessageQueue::NextTimer(const MessageFilter& filter) const {
  std::optional<Time> next;
  for (const WindowTimer& timer : timers_)
    if (filter.Wants(timer.window, WM_TIMER) && (!next || timer.due < *next)) next = timer.due;
  return next;
}

void MessageQueue::Invalidate(HWND window) {
  if (!MustPaint(window)) toPaint_.push_back(window);
}

void MessageQueue::Validate(HWND window) {
  std::erase(toPaint_, window);
}

bool MessageQueue::MustPaint(HWND window) const {
  return std::ranges::find(toPaint_, window) != toPaint_.end();
}

void MessageQueue::Forget(HWND window) {
  Validate(window);
  std::erase_if(posted_, [&](const MSG& message) { return message.hwnd == window; });
  std::erase_if(timers_, [&](const WindowTimer& timer) { return timer.window == window; });
  for (const std::shared_ptr<SentMessage>& message : sent_)
    if (message->window == window) message->answered = true;
  std::erase_if(sent_,
                [&](const std::shared_ptr<SentMessage>& message) { return message->window == window; });
}

void MessageQueue::Clear() {
  for (const std::shared_ptr<SentMessage>& message : sent_) message->answered = true;
  sent_.clear();
  posted_.clear();
  toPaint_.clear();
  timers_.clear();
  quit_.reset();
}

}  // namespace pal
