#include "simulator/wire.h"

#include <gtest/gtest.h>

#include <random>

#include "link/frame.h"

namespace simulator {
namespace {

using Bytes = std::vector<uint8_t>;

std::vector<WireEvent> ReadAll(const Bytes& bytes) {
  FrameReader reader;
  std::vector<WireEvent> events;
  for (const uint8_t byte : bytes)
    if (std::optional<WireEvent> event = reader.Take(byte)) events.push_back(std::move(*event));
  return events;
}

TEST(Wire, FramesAreTheProtocolsOwnExamples) {
  const struct {
    Bytes message;
    const char* frame;
  } kCases[] = {
      {MakeMessage(MessageType::kText, "GetSerial"), "55 55 0A 47 65 74 53 65 72 69 61 6C 76 04"},
      {MakeMessage(MessageType::kText, "Ready"), "55 55 0A 52 65 61 64 79 01 04"},
      {MakeMessage(MessageType::kText, "SetBatteryCritical=2"),
       "55 55 0A 53 65 74 42 61 74 74 65 72 79 43 72 69 74 69 63 61 6C 3D 32 05 55 04"},
      {{0x01, 0x40, 0x00, 0x55, 0x00}, "55 55 01 40 00 05 55 00 6A 04"},
      {{0x08}, "55 55 08 F8 04"},
  };
  for (const auto& example : kCases) {
    EXPECT_EQ(DescribeBytes(EncodeFrame(example.message)), example.frame);
    const std::vector<WireEvent> events = ReadAll(EncodeFrame(example.message));
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].fault, "");
    EXPECT_EQ(events[0].message, example.message);
  }
}

// Two implementations of one protocol: what one makes, the other makes too and understands.
TEST(Wire, AgreesWithTheTool) {
  std::mt19937 random(20241119);
  constexpr uint8_t kMostlySpecial[] = {0x04, 0x05, 0x55, 0x0A, 0xAB, 0xFB, 0xFC, 0x00};
  veltra::FrameReceiver toolReceiver;
  for (int round = 0; round < 2000; ++round) {
    Bytes message(1 + random() % 40);
    for (uint8_t& byte : message)
      byte = random() % 2 ? kMostlySpecial[random() % std::size(kMostlySpecial)]
                          : static_cast<uint8_t>(random());
    const Bytes frame = EncodeFrame(message);
    ASSERT_EQ(veltra::EncodeFrame(message), frame);
    const std::vector<WireEvent> events = ReadAll(frame);
    ASSERT_EQ(events.size(), 1U);
    ASSERT_EQ(events[0].message, message);
    auto outcome = veltra::FrameReceiver::Outcome::kNothing;
    for (const uint8_t byte : frame) outcome = toolReceiver.OnByte(byte);
    ASSERT_EQ(outcome, veltra::FrameReceiver::Outcome::kMessage);
    const std::span<const uint8_t> received = toolReceiver.Message();
    ASSERT_EQ(Bytes(received.begin(), received.end()), message);
  }
}

TEST(Wire, NamesEveryFault) {
  const struct {
    Bytes bytes;
    const char* fault;
  } kCases[] = {
      {{0x41}, "byte 41 outside a frame"},
      {{0x55, 0x0A}, "one header byte instead of two"},
      {{0x55, 0x55, 0x08, 0xF7, 0x04}, "wrong checksum"},
      {{0x55, 0x55, 0x04}, "a frame without a message"},
      {{0x55, 0x55, 0x00, 0x04}, "a frame without a message"},
      {{0x55, 0x55, 0x0A, 0x05, 0x41}, "byte 41 needs no escape"},
      {{0x55, 0x55, 0x0A, 0x55}, "a new header inside a frame"},
  };
  for (const auto& faulty : kCases) {
    Bytes bytes = faulty.bytes;
    const std::vector<WireEvent> alone = ReadAll(bytes);
    ASSERT_EQ(alone.size(), 1U) << faulty.fault;
    EXPECT_EQ(alone[0].fault, faulty.fault);
    // Whatever came before, a good frame is understood. A header that ended a frame is half of the next one.
    const Bytes good = EncodeFrame(Bytes{0x08});
    const bool headerIsThere = bytes.back() == 0x55;
    bytes.insert(bytes.end(), good.begin() + (headerIsThere ? 1 : 0), good.end());
    const std::vector<WireEvent> events = ReadAll(bytes);
    ASSERT_EQ(events.size(), 2U) << faulty.fault;
    EXPECT_EQ(events[1].message, Bytes{0x08}) << faulty.fault;
  }
}

TEST(Wire, DescriptionsAreReadable) {
  EXPECT_EQ(DescribeMessage(MakeMessage(MessageType::kText, "Sw1Make")), "Sw1Make");
  EXPECT_EQ(DescribeMessage(MakeMessage(MessageType::kReply, "OK")), "reply OK");
  EXPECT_EQ(DescribeMessage(MakeMessage(MessageType::kReply, "")), "reply without content");
  EXPECT_EQ(DescribeMessage(MakeMessage(MessageType::kReply, "\x01\x04")), "reply 01 04");
  EXPECT_EQ(DescribeMessage(MakeMessage(MessageType::kLogLine, "low power")), "log low power");
  EXPECT_EQ(DescribeMessage(Bytes{0x07, 0x00, 0x40}), "type 07: 00 40");
  EXPECT_EQ(DescribeMessage(Bytes{0x03, 0x01, 0x00, 0x0C, 0x00}), "erase page 0x01800");
  EXPECT_EQ(DescribeMessage(Bytes{0x03}), "erased");
}

}  // namespace
}  // namespace simulator
