#include "simulator/wine/controller_line.h"

#include <poll.h>
#include <unistd.h>

#include <thread>

#include "simulator/wine/failure.h"

namespace simulator {

Duration ControllerLine::Now() const {
  return std::chrono::duration_cast<Duration>(std::chrono::steady_clock::now() - start_);
}

bool ControllerLine::IsOpen() const {
  if (!terminal_) return false;
  pollfd state{terminal_->Get(), 0, 0};
  return poll(&state, 1, 0) >= 0 && !(state.revents & POLLHUP);
}

// What nobody listens to is lost.
void ControllerLine::Send(std::span<const uint8_t> bytes) {
  while (!bytes.empty() && IsOpen()) {
    const ssize_t count = write(terminal_->Get(), bytes.data(), bytes.size());
    if (count > 0)
      bytes = bytes.subspan(static_cast<size_t>(count));
    else
      std::this_thread::sleep_for(kPollPause);  // the line is full
  }
}

void ControllerLine::Serve() {
  uint8_t bytes[4096];
  const ssize_t count = terminal_ ? read(terminal_->Get(), bytes, sizeof bytes) : 0;
  if (count > 0) controller_.Receive({bytes, static_cast<size_t>(count)});
  while (!due_.empty() && due_.begin()->first <= Now()) {
    const auto node = due_.extract(due_.begin());
    node.mapped()();
  }
}

}  // namespace simulator
