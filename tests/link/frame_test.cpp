#include "link/frame.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string_view>

#include "base/text.h"

namespace veltra {
namespace {

using Frame = std::vector<uint8_t>;
using Outcome = FrameReceiver::Outcome;

Frame TextMessage(std::string_view text) {
  Frame message(1 + text.size(), 0x0A);
  std::copy(text.begin(), text.end(), message.begin() + 1);
  return message;
}

TEST(EncodeFrame, FramesSeenOnTheWire) {
  const struct {
    Frame message;
    Frame frame;
  } kCases[] = {
      {TextMessage("GetSerial"),
       {0x55, 0x55, 0x0A, 0x47, 0x65, 0x74, 0x53, 0x65, 0x72, 0x69, 0x61, 0x6C, 0x76, 0x04}},
      {TextMessage("Ready"), {0x55, 0x55, 0x0A, 0x52, 0x65, 0x61, 0x64, 0x79, 0x01, 0x04}},
      // a checksum that must be escaped
      {TextMessage("SetBatteryCritical=2"),
       {0x55, 0x55, 0x0A, 0x53, 0x65, 0x74, 0x42, 0x61, 0x74, 0x74, 0x65, 0x72, 0x79,
        0x43, 0x72, 0x69, 0x74, 0x69, 0x63, 0x61, 0x6C, 0x3D, 0x32, 0x05, 0x55, 0x04}},
      {{0x01, 0x40, 0x00, 0x55, 0x00}, {0x55, 0x55, 0x01, 0x40, 0x00, 0x05, 0x55, 0x00, 0x6A, 0x04}},
      {{0x08}, {0x55, 0x55, 0x08, 0xF8, 0x04}},
      {{}, {0x55, 0x55, 0x00, 0x04}},
  };
  for (const auto& c : kCases) EXPECT_EQ(EncodeFrame(c.message), c.frame);
}

// The rules of the line written down step by step, without the running sum: slow, and the measure of the fast
// receiver.
class PlainReceiver {
 public:
  Outcome OnByte(uint8_t byte) {
    if (!frame_.empty() && frame_.back() == 0x05 && !escaped_) {
      frame_.back() = byte;
      escaped_ = true;
      return Outcome::kNothing;
    }
    escaped_ = false;
    if (byte == 0x55) {
      frame_.clear();
      return Outcome::kNothing;
    }
    if (byte != 0x04 || frame_.empty()) {
      frame_.push_back(byte);
      return Outcome::kNothing;
    }
    unsigned sum = 0;
    for (size_t n = 0; n + 1 < frame_.size(); ++n) sum += frame_[n];
    if ((0x100 - sum % 256) % 256 != frame_.back()) return Outcome::kBadChecksum;
    frame_.pop_back();
    return Outcome::kMessage;
  }
  const Frame& Message() const { return frame_; }

 private:
  Frame frame_;
  bool escaped_ = false;
};

// Frames of all lengths, and bytes that mostly are none.
TEST(FrameReceiver, AgreesWithThePlainRulesOnAnyBytes) {
  std::mt19937 random(57600);
  FrameReceiver fast;
  PlainReceiver plain;
  size_t messages = 0;
  size_t longest = 0;
  for (int round = 0; round < 3000; ++round) {
    constexpr uint8_t kUsual[] = {0x04, 0x04, 0x05, 0x55, 0x00, 0x00, 0x01, 0xFF};
    Frame bytes(random() % (random() % 20 ? 200 : 3000));
    for (uint8_t& byte : bytes) byte = random() % 8 ? kUsual[random() % 8] : static_cast<uint8_t>(random());
    const bool isFrame = random() % 2;
    if (isFrame) bytes = EncodeFrame(bytes);
    Outcome outcome = Outcome::kNothing;
    for (const uint8_t byte : bytes) {
      outcome = fast.OnByte(byte);
      ASSERT_EQ(outcome, plain.OnByte(byte)) << "in round " << round;
      if (outcome != Outcome::kMessage) continue;
      ++messages;
      longest = std::max(longest, fast.Message().size());
      ASSERT_EQ(Frame(fast.Message().begin(), fast.Message().end()), plain.Message()) << "in round " << round;
    }
    ASSERT_TRUE(!isFrame || outcome == Outcome::kMessage) << "in round " << round;
  }
  EXPECT_GT(messages, 2000U);
  EXPECT_GT(longest, 2048U);
}

// Neither zeros without a header nor a frame of any length keep what comes after them from being heard.
TEST(FrameReceiver, WhatIsTooLongIsBad) {
  constexpr size_t kLimit = 1 << 20;
  const std::pair<size_t, Outcome> cases[] = {{65536, Outcome::kMessage},
                                              {kLimit - 2, Outcome::kMessage},
                                              {kLimit - 1, Outcome::kBadChecksum},
                                              {3 * kLimit, Outcome::kBadChecksum}};
  FrameReceiver receiver;
  const auto receive = [&](const Frame& bytes) {
    Outcome last = Outcome::kNothing;
    for (const uint8_t byte : bytes) last = receiver.OnByte(byte);
    return last;
  };
  EXPECT_EQ(receive({0x41, 0x04}), Outcome::kBadChecksum);  // before the first header
  for (const auto& [size, outcome] : cases) {
    EXPECT_EQ(receive(Frame(size)), Outcome::kNothing);
    EXPECT_EQ(receive(EncodeFrame(Frame(size))), outcome) << size;
    EXPECT_EQ(receive(EncodeFrame(Frame{0x08})), Outcome::kMessage) << size;
  }
}

}  // namespace
}  // namespace veltra
