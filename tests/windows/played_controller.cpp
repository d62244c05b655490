#include "tests/windows/played_controller.h"

#include <unistd.h>

#include <thread>

namespace windows_test {
namespace {

constexpr std::chrono::milliseconds kPause{1};

}  // namespace

simulator::Duration PlayedController::Now() const {
  return std::chrono::duration_cast<simulator::Duration>(std::chrono::steady_clock::now() - start_);
}

void PlayedController::Send(std::span<const uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(terminal_.Get(), bytes.data(), bytes.size());
    if (count > 0)
      bytes = bytes.subspan(static_cast<size_t>(count));
    else
      std::this_thread::sleep_for(kPause);  // the line is full
  }
}

void PlayedController::Serve() {
  uint8_t bytes[4096];
  const ssize_t count = read(terminal_.Get(), bytes, sizeof bytes);
  if (count > 0) controller_.Receive({bytes, static_cast<size_t>(count)});
  while (!due_.empty() && due_.begin()->first <= Now()) {
    const auto node = due_.extract(due_.begin());
    node.mapped()();
  }
}

void PlayedController::ServeUntil(std::string_view what, const std::function<bool()>& condition,
                                  const Where& where) {
  const auto limit = std::chrono::steady_clock::now() + kPatience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > limit) Fail("waited in vain: " + std::string(what), where);
    Serve();
    std::this_thread::sleep_for(kPause);
  }
}

void PlayedController::ServeUntilQuiet(const Where& where) {
  constexpr std::chrono::milliseconds kQuiet{500};
  size_t requests = 0;
  auto since = std::chrono::steady_clock::now();
  ServeUntil(
      "the tool asks nothing more",
      [&] {
        const auto now = std::chrono::steady_clock::now();
        if (controller_.Requests().size() != requests) {
          requests = controller_.Requests().size();
          since = now;
        }
        return requests > 0 && now - since > kQuiet;
      },
      where);
}

}  // namespace windows_test
