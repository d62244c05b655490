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

// What a receiver makes of the bytes: its messages, an empty one for a bad checksum.
std::vector<Frame> Receive(FrameReceiver& receiver, const Frame& bytes) {
  std::vector<Frame> events;
  for (const uint8_t byte : bytes) {
    const Outcome outcome = receiver.OnByte(byte);
    if (outcome == Outcome::kMessage)
      events.emplace_back(receiver.Message().begin(), receiver.Message().end());
    if (outcome == Outcome::kBadChecksum) events.emplace_back();
  }
  return events;
}

std::vector<Frame> Receive(const Frame& bytes) {
  FrameReceiver receiver;
  return Receive(receiver, bytes);
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
  };
  for (const auto& c : kCases) EXPECT_EQ(EncodeFrame(c.message), c.frame);
}

TEST(FrameReceiver, TakesFramesAndNoise) {
  const Frame resend = {0x55, 0x55, 0x0A, 0x52, 0x65, 0x73, 0x65, 0x6E, 0x64, 0x95, 0x04};
  const Frame message = TextMessage("Resend");
  EXPECT_EQ(Receive(resend), std::vector<Frame>{message});

  Frame twice = resend;  // one header byte between two frames is enough
  twice.insert(twice.end(), resend.begin() + 1, resend.end());
  EXPECT_EQ(Receive(twice), (std::vector<Frame>{message, message}));

  Frame noisy = {0x04, 0x04, 0x00, 0x17, 0x05, 0x04, 0x05};  // starts with trailers, ends in an escape
  noisy.insert(noisy.end(), resend.begin(), resend.end());
  EXPECT_EQ(Receive(noisy), (std::vector<Frame>{Frame(), message}));

  Frame corrupted = resend;
  corrupted[4] ^= 0x10;
  EXPECT_EQ(Receive(corrupted), std::vector<Frame>{Frame()});
}

TEST(FrameReceiver, AFrameBehindAMessageThatEndsInAnEscapeByteIsReceived) {
  FrameReceiver receiver;
  const Frame first = {0x0C, 0x31, 0x05};
  const Frame second = TextMessage("Sw1Make");
  EXPECT_EQ(Receive(receiver, EncodeFrame(first)), std::vector<Frame>{first});
  EXPECT_EQ(Receive(receiver, EncodeFrame(second)), std::vector<Frame>{second});
}

TEST(FrameReceiver, EveryMessageSurvivesTheWire) {
  std::mt19937 random(20241119);
  FrameReceiver receiver;
  for (int round = 0; round < 5000; ++round) {
    Frame message(1 + random() % 300);
    for (uint8_t& byte : message) {
      constexpr uint8_t kSpecial[] = {0x04, 0x05, 0x55};
      byte = random() % 3 ? static_cast<uint8_t>(random()) : kSpecial[random() % 3];
    }
    ASSERT_EQ(Receive(receiver, EncodeFrame(message)), std::vector<Frame>{message});
  }
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

TEST(FrameReceiver, AgreesWithThePlainRulesOnAnyBytes) {
  std::mt19937 random(57600);
  FrameReceiver fast;
  PlainReceiver plain;
  size_t messages = 0;
  for (int n = 0; n < 400000; ++n) {
    constexpr uint8_t kUsual[] = {0x04, 0x04, 0x05, 0x55, 0x00, 0x00, 0x01, 0xFF};
    const uint8_t byte = random() % 8 ? kUsual[random() % 8] : static_cast<uint8_t>(random());
    const Outcome outcome = fast.OnByte(byte);
    ASSERT_EQ(outcome, plain.OnByte(byte)) << "at byte " << n;
    if (outcome != Outcome::kMessage) continue;
    ++messages;
    ASSERT_EQ(Frame(fast.Message().begin(), fast.Message().end()), plain.Message()) << "at byte " << n;
  }
  EXPECT_GT(messages, 1000U);
}

}  // namespace
}  // namespace veltra
