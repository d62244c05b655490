// What the simulated controller must not let pass, and what flash does: where it is too kind, tests of the
// tool pass that should not. All else of it is seen by them.
#include "simulator/controller.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace simulator {
namespace {

using std::chrono::milliseconds;
using Bytes = std::vector<uint8_t>;
using Texts = std::vector<std::string>;

constexpr uint32_t kRow = 0x1800;

// A frame's word, or its fault, for each that a strict reader sees.
std::string Read(const Bytes& bytes) {
  FrameReader reader;
  std::string text;
  for (const uint8_t byte : bytes)
    if (const std::optional<WireEvent> event = reader.Take(byte))
      text += (text.empty() ? "" : " | ") +
              (event->fault.empty() ? DescribeMessage(event->message) : event->fault);
  return text;
}

// A controller on a bench: time passes when told to, and what it sends is kept.
class Bench {
 public:
  Controller controller{{
      [this](std::span<const uint8_t> bytes) { sent.insert(sent.end(), bytes.begin(), bytes.end()); },
      [this](Duration delay, std::function<void()> action) { due_.emplace(now_ + delay, std::move(action)); },
      [this] { return now_; },
  }};
  Bytes sent;

  void Pass(Duration time) {
    const Duration end = now_ + time;
    while (!due_.empty() && due_.begin()->first <= end) {
      const auto node = due_.extract(due_.begin());
      now_ = node.key();
      node.mapped()();
    }
    now_ = end;
  }
  std::string TakeSent() { return Read(std::exchange(sent, {})); }
  std::string Send(const Bytes& message) {
    controller.Receive(EncodeFrame(message));
    Pass(milliseconds(50));
    return TakeSent();
  }
  std::string Ask(std::string_view text) { return Send(MakeMessage(MessageType::kText, text)); }

 private:
  Duration now_{0};
  std::multimap<Duration, std::function<void()>> due_;
};

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
    // A good frame after it is understood. A header that ended a frame is half of the next one.
    Bytes bytes = faulty.bytes;
    const Bytes good = EncodeFrame(Bytes{0x08});
    bytes.insert(bytes.end(), good.begin() + (bytes.back() == 0x55 ? 1 : 0), good.end());
    EXPECT_EQ(Read(bytes), std::string(faulty.fault) + " | finish");
  }
}

TEST(Controller, AFaultThatIsHealedHasSpoiltOneAnswer) {
  const struct {
    Fault fault;
    const char* sent;
  } kCases[] = {
      {Fault::kFlip, "wrong checksum"},
      {Fault::kDrop, "wrong checksum"},
      {Fault::kDouble, "wrong checksum"},
      {Fault::kGarbage,
       "byte 00 outside a frame | byte FF outside a frame | byte 13 outside a frame | byte 7E outside a "
       "frame | reply 37"},
      {Fault::kAgain, "Resend"}};
  for (const auto& faulty : kCases) {
    Bench bench;
    bench.controller.Arm(faulty.fault);
    EXPECT_EQ(bench.Ask("GetBatteryCycles"), faulty.sent);
    EXPECT_EQ(bench.Ask("GetBatteryCycles"), "reply 37");
  }
}

TEST(Controller, SeesWhenTheToolBreaksTheRules) {
  Bench bench;
  bench.controller.Receive(EncodeFrame(MakeMessage(MessageType::kText, "GetSerial")));
  bench.Ask("GetPCBSerial");
  Bytes frame = EncodeFrame(MakeMessage(MessageType::kText, "GetSerial"));
  frame[5] ^= 1;
  bench.controller.Receive(frame);
  EXPECT_EQ(bench.TakeSent(), "Resend");
  bench.Send({3, 1, 0x00, 0x0C, 0x00});
  EXPECT_EQ(bench.controller.Violations(),
            (Texts{"GetPCBSerial before the reply to GetSerial", "bad frame: wrong checksum",
                   "erase page 0x01800 while the firmware runs"}));

  Bench patient;  // a repeat that the controller asked for is no second request
  patient.controller.Arm(Fault::kAgain);
  EXPECT_EQ(patient.Ask("GetBatteryCycles"), "Resend");
  EXPECT_EQ(patient.Ask("GetBatteryCycles"), "reply 37");
  EXPECT_EQ(patient.controller.Violations(), Texts());
}

TEST(Controller, PacedBytesTakeTheirTimeOnTheLine) {
  Bench bench;
  bench.controller.SetPaced(true);
  bench.controller.Press(Button::kSwitch1);
  bench.controller.Release(Button::kSwitch1);  // after the first
  bench.Pass(milliseconds(1));
  EXPECT_EQ(bench.sent.size(), 5U);  // 57600 baud and 10 bits a byte: 5.76 bytes a millisecond
  bench.Pass(milliseconds(100));
  EXPECT_EQ(bench.TakeSent(), "Sw1Make | Sw1Break");
}

// ---- the bootloader

Bytes Command(uint8_t type, uint8_t count, uint32_t address) {
  const uint32_t word = address / 2;
  return {type, count, static_cast<uint8_t>(word), static_cast<uint8_t>(word >> 8),
          static_cast<uint8_t>(word >> 16)};
}
Bytes Erase(uint32_t page) {
  return Command(3, 1, page);
}
Bytes Write(uint32_t row, uint8_t value) {
  Bytes command = Command(2, 1, row);
  command.resize(command.size() + Flash::kRowSize, value);
  return command;
}
Bytes Read(uint32_t row) {
  return Command(1, 0x40, row);
}

class InBootloader : public Bench {
 public:
  InBootloader() { Ask("GotoBootloader"); }
  uint8_t At(uint32_t address) { return controller.bootloader.Memory().Bytes()[address]; }
};

TEST(ControllerBootloader, WhatWasNotErasedIsSpoiltByAWrite) {
  InBootloader bench;
  EXPECT_EQ(bench.Send(Erase(kRow)), "erased");
  EXPECT_EQ(bench.Send(Write(kRow, 0xF0)), "written");
  EXPECT_EQ(bench.At(kRow), 0xF0);
  bench.Send(Write(kRow, 0x3C));
  EXPECT_EQ(bench.At(kRow), 0x30);
  EXPECT_EQ(bench.Send(Read(kRow)), "row 0x01800 with 256 bytes");
}

TEST(ControllerBootloader, KnowsNothingElse) {
  InBootloader bench;
  EXPECT_EQ(bench.Ask("GetSerial"), "");
  bench.controller.Press(Button::kSwitch1);
  EXPECT_EQ(bench.TakeSent(), "");
  EXPECT_EQ(bench.Ask("GotoBootloader"), "reply OK");
  for (const Bytes& wrong : {Erase(kRow + Flash::kRowSize), Erase(Flash::kSize), Command(3, 2, kRow),
                             Bytes{3}, Read(kRow + 2), Command(2, 1, kRow)})
    EXPECT_EQ(bench.Send(wrong), "");
  EXPECT_EQ(bench.controller.Violations().size(), 6U);
}

TEST(ControllerBootloader, AFailingPowerLeavesHalfOfTheWork) {
  InBootloader bench;
  bench.controller.Arm(Fault::kPower);
  EXPECT_EQ(bench.Send(Erase(kRow)), "");
  EXPECT_EQ(bench.At(kRow), 0xFF);
  EXPECT_EQ(bench.At(kRow + 3), 0x00);
  EXPECT_NE(bench.At(kRow + Flash::kPageSize / 2), 0xFF);
  EXPECT_EQ(bench.Send(Read(kRow)), "");

  bench.controller.RestorePower();  // without firmware: into the bootloader, silently
  EXPECT_EQ(bench.TakeSent(), "");
  EXPECT_EQ(bench.Send(Erase(kRow)), "erased");
  bench.controller.Arm(Fault::kPower);
  EXPECT_EQ(bench.Send(Write(kRow, 0x11)), "");
  EXPECT_EQ(bench.At(kRow + Flash::kRowSize / 2 - 2), 0x11);
  EXPECT_EQ(bench.At(kRow + Flash::kRowSize / 2), 0xFF);

  bench.controller.RestorePower();
  bench.controller.Arm(Fault::kStuckBit);
  bench.Send(Erase(kRow));
  EXPECT_EQ(bench.Send(Write(kRow, 0x11)), "written");
  EXPECT_EQ(std::ranges::count(bench.controller.bootloader.Memory().Row(kRow), 0x11),
            Flash::kRowSize * 3 / 4 - 1);
  EXPECT_EQ(bench.Send({8}), "finish");
  bench.controller.CutPower();
  bench.controller.RestorePower();
  EXPECT_EQ(bench.TakeSent(), "log power up | Firmware=112");
}

}  // namespace
}  // namespace simulator
