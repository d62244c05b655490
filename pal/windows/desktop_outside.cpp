// The desktop as other programs use it.
#include <dbt.h>

#include <algorithm>

#include "pal/kernel/tick_count.h"
#include "pal/machine/state.h"

namespace pal {
namespace {

// What lParam of a message from the outside points to. The program may handle it when the sender's memory is
// gone.
std::vector<uint8_t> CopyPointedTo(UINT message, LPARAM lParam) {
  if (message != WM_DEVICECHANGE || lParam == 0) return {};
  const auto* header = reinterpret_cast<const DEV_BROADCAST_HDR*>(lParam);
  const auto* bytes = reinterpret_cast<const uint8_t*>(header);
  return {bytes, bytes + header->dbch_size};
}

// Copied data as the receiver sees it: the structure, and the payload right after it.
std::vector<uint8_t> PackCopyData(uint64_t tag, std::span<const uint8_t> payload) {
  std::vector<uint8_t> packed(sizeof(COPYDATASTRUCT) + payload.size());
  uint8_t* bytes = packed.data() + sizeof(COPYDATASTRUCT);
  std::copy(payload.begin(), payload.end(), bytes);
  const COPYDATASTRUCT data{static_cast<ULONG_PTR>(tag), static_cast<DWORD>(payload.size()),
                            payload.empty() ? nullptr : bytes};
  std::copy_n(reinterpret_cast<const uint8_t*>(&data), sizeof(data), packed.data());
  return packed;
}

}  // namespace

HWND Desktop::AddForeignWindow(std::u16string_view className, ForeignWindowHandler handler) {
  const MachineLock lock(state_.mutex);
  Window window;
  window.windowClass =
      std::make_shared<const WindowClass>(WindowClass{std::u16string(className), nullptr, 0, {}});
  window.foreign = std::move(handler);
  return foreground = Add(std::move(window)).handle;
}

Window& Desktop::NeedForeign(HWND window) {
  Window* found = Find(window);
  if (!found || found->thread) Die("no such window of another program");
  return *found;
}

void Desktop::RemoveForeignWindow(HWND window) {
  const MachineLock lock(state_.mutex);
  NeedForeign(window);
  Remove(window);
  state_.scheduler.Notify();
}

void Desktop::SetHung(HWND window, bool hung, bool awaitsAnswer) {
  const MachineLock lock(state_.mutex);
  Window& other = NeedForeign(window);
  other.hungSince = hung ? std::optional(state_.scheduler.Now()) : std::nullopt;
  other.awaitsAnswer = awaitsAnswer;
  state_.scheduler.Notify();
}

HWND Desktop::ProgramWindow(std::u16string_view className) {
  const MachineLock lock(state_.mutex);
  for (const HWND handle : TopLevel()) {
    const Window* window = Find(handle);
    if (window->thread && SameName(window->windowClass->name, className)) return handle;
  }
  return nullptr;
}

std::optional<LRESULT> Desktop::Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam, Time limit) {
  auto sent = std::make_shared<SentMessage>(
      SentMessage{window, message, wParam, lParam, CopyPointedTo(message, lParam)});
  if (!sent->copied.empty()) sent->lParam = reinterpret_cast<LPARAM>(sent->copied.data());
  return SendFromOutside(std::move(sent), limit);
}

std::optional<LRESULT> Desktop::SendCopyData(HWND window, HWND sender, uint64_t tag,
                                             std::span<const uint8_t> payload, Time limit) {
  auto sent = std::make_shared<SentMessage>(
      SentMessage{window, WM_COPYDATA, reinterpret_cast<WPARAM>(sender), 0, PackCopyData(tag, payload)});
  sent->lParam = reinterpret_cast<LPARAM>(sent->copied.data());
  return SendFromOutside(std::move(sent), limit);
}

// Whether Windows lets the message through from the outside, or sends it at all. A Windows that knows modern
// standby tells of sleep who asks for it alone.
bool Desktop::Reaches(const Window& window, UINT message) const {
  if (!window.thread) return false;
  if (message == WM_POWERBROADCAST) return !HasModernStandby(state_.system) || window.hearsOfSleep;
  if (message == WM_WTSSESSION_CHANGE) return window.hearsOfSession;
  const bool isOfPrograms = message >= WM_USER || message == WM_COPYDATA || message == WM_COMMAND;
  return !isElevated || !isOfPrograms || window.admitted.contains(message);
}

// Queues the message and waits for the answer; with no time to wait it only queues it.
std::optional<LRESULT> Desktop::SendFromOutside(std::shared_ptr<SentMessage> sent, Time limit) {
  const MachineLock lock(state_.mutex);
  const Window* window = Find(sent->window);
  if (!window || !Reaches(*window, sent->message)) return std::nullopt;
  window->thread->queue.Send(sent);
  state_.scheduler.Notify();
  if (limit > Time(0))
    state_.scheduler.Run(state_.scheduler.Now() + limit, [sent] { return sent->answered; });
  return sent->result;
}

bool Desktop::Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const MachineLock lock(state_.mutex);
  const Window* found = Find(window);
  if (!found || !Reaches(*found, message)) return false;
  const DWORD time = TickCount(state_.scheduler.Now());
  if (!found->thread->queue.Post({window, message, wParam, lParam, time, {0, 0}})) return false;
  state_.scheduler.Notify();
  return true;
}

}  // namespace pal
