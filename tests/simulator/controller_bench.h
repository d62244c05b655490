// A controller on a bench: time passes when told to, and what it sends is kept.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/controller.h"

namespace simulator {

using Bytes = std::vector<uint8_t>;

class Bench {
 public:
  Controller controller{{
      [this](std::span<const uint8_t> bytes) {
        sent.insert(sent.end(), bytes.begin(), bytes.end());
        lastSentAt = now_;
      },
      [this](Duration delay, std::function<void()> action) { due_.emplace(now_ + delay, std::move(action)); },
      [this] { return now_; },
  }};
  Bytes sent;
  Duration lastSentAt{0};

  void Pass(Duration time) {
    const Duration end = now_ + time;
    while (!due_.empty() && due_.begin()->first <= end) {
      const auto node = due_.extract(due_.begin());
      now_ = node.key();
      node.mapped()();
    }
    now_ = end;
  }
  void Ask(std::string_view text) { controller.Receive(EncodeFrame(MakeMessage(MessageType::kText, text))); }
  // What was sent since the last call, as a strict reader sees it: one word for each frame or fault.
  std::string TakeSent() {
    FrameReader reader;
    std::string text;
    for (const uint8_t byte : sent)
      if (const std::optional<WireEvent> event = reader.Take(byte))
        text += (text.empty() ? "" : " | ") +
                (event->fault.empty() ? DescribeMessage(event->message) : event->fault);
    sent.clear();
    return text;
  }
  std::string AskAndTake(std::string_view text) {
    Ask(text);
    Pass(std::chrono::milliseconds(2));
    return TakeSent();
  }

 private:
  Duration now_{0};
  std::multimap<Duration, std::function<void()>> due_;
};

}  // namespace simulator
