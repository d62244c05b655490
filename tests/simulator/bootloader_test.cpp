// The controller's own part of a firmware update: what flash does, and what is left when the power fails.
#include <gtest/gtest.h>

#include <algorithm>

#include "simulator/firmware_file.h"
#include "tests/simulator/controller_bench.h"

namespace simulator {
namespace {

using std::chrono::milliseconds;

constexpr uint32_t kRow = 0x1800;
constexpr uint32_t kExistingBytes = Flash::kRowSize * 3 / 4;  // of a row

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

// A controller that has been asked into its bootloader.
class InBootloader : public Bench {
 public:
  InBootloader() { AskAndTake("GotoBootloader"); }
  std::string Send(const Bytes& message) {
    controller.Receive(EncodeFrame(message));
    Pass(milliseconds(50));
    return TakeSent();
  }
  std::span<const uint8_t> Row(uint32_t row) { return controller.bootloader.Memory().Row(row); }
  bool RowIs(uint32_t row, uint8_t value) { return std::ranges::count(Row(row), value) == Flash::kRowSize; }
  bool RowIsErased(uint32_t row) { return Row(row)[0] == 0xFF && Row(row)[1] == 0xFF && Row(row)[3] == 0; }
};

TEST(ControllerBootloader, ErasesWritesAndReadsBack) {
  InBootloader bench;
  EXPECT_EQ(bench.Send(Erase(kRow)), "erased");
  EXPECT_TRUE(bench.RowIsErased(kRow));
  EXPECT_TRUE(bench.RowIsErased(kRow + Flash::kPageSize - Flash::kRowSize));
  EXPECT_FALSE(bench.RowIsErased(kRow + Flash::kPageSize));
  EXPECT_EQ(bench.Send(Write(kRow, 0x00)), "written");
  EXPECT_TRUE(bench.RowIs(kRow, 0x00));
  EXPECT_EQ(bench.Send(Read(kRow)), "row 0x01800 with 256 bytes");
  EXPECT_EQ(bench.Send({8}), "finish");
  EXPECT_TRUE(bench.controller.Violations().empty());
}

TEST(ControllerBootloader, WhatWasNotErasedIsSpoiltByAWrite) {
  InBootloader bench;
  bench.Send(Erase(kRow));
  bench.Send(Write(kRow, 0xF0));
  bench.Send(Write(kRow, 0x3C));
  EXPECT_EQ(bench.Row(kRow)[0], 0x30);
}

TEST(ControllerBootloader, TheSameEraseTwiceIsOneErase) {
  InBootloader bench;
  bench.controller.Receive(EncodeFrame(Erase(kRow)));
  bench.controller.Receive(EncodeFrame(Erase(kRow)));  // while it works
  bench.Pass(milliseconds(50));
  EXPECT_EQ(bench.TakeSent(), "erased");
  EXPECT_EQ(bench.Send(Erase(kRow)), "");  // and behind
  EXPECT_EQ(bench.Send(Erase(0x2000)), "erased");
  EXPECT_EQ(bench.Send(Erase(kRow)), "erased");  // another one has come between
  EXPECT_TRUE(bench.controller.Violations().empty());
}

TEST(ControllerBootloader, KnowsNothingElse) {
  InBootloader bench;
  EXPECT_EQ(bench.AskAndTake("GetSerial"), "");
  bench.controller.Press(Button::kSwitch1);
  EXPECT_EQ(bench.TakeSent(), "");
  EXPECT_EQ(bench.AskAndTake("GotoBootloader"), "reply OK");
  for (const Bytes& wrong : {Erase(kRow + Flash::kRowSize), Erase(Flash::kSize), Command(3, 2, kRow),
                             Bytes{3}, Read(kRow + 2), Command(2, 1, kRow)})
    EXPECT_EQ(bench.Send(wrong), "");
  EXPECT_EQ(bench.controller.Violations().size(), 6U);

  Bench firmware;  // which has no bootloader commands
  firmware.controller.Receive(EncodeFrame(Erase(kRow)));
  firmware.Pass(milliseconds(50));
  EXPECT_EQ(firmware.TakeSent(), "");
  EXPECT_EQ(firmware.controller.Violations().size(), 1U);
}

TEST(ControllerBootloader, AFailingPowerLeavesHalfOfTheWork) {
  InBootloader bench;
  bench.controller.Arm(Fault::kPower);
  EXPECT_EQ(bench.Send(Erase(kRow)), "");
  EXPECT_TRUE(bench.RowIsErased(kRow));
  EXPECT_FALSE(bench.RowIsErased(kRow + Flash::kPageSize / 2));
  EXPECT_EQ(bench.Send(Read(kRow)), "");

  bench.controller.RestorePower();  // without firmware: into the bootloader, silently
  EXPECT_EQ(bench.TakeSent(), "");
  EXPECT_TRUE(bench.controller.IsInBootloader());
  EXPECT_EQ(bench.Send(Erase(kRow)), "erased");
  bench.controller.Arm(Fault::kPower);
  EXPECT_EQ(bench.Send(Write(kRow, 0x11)), "");
  EXPECT_EQ(bench.Row(kRow)[Flash::kRowSize / 2 - 2], 0x11);
  EXPECT_EQ(bench.Row(kRow)[Flash::kRowSize / 2], 0xFF);

  bench.controller.RestorePower();
  EXPECT_EQ(bench.Send({8}), "finish");
  bench.controller.CutPower();
  bench.controller.RestorePower();
  EXPECT_EQ(bench.TakeSent(), "log power up | Firmware=112");
  EXPECT_EQ(bench.AskAndTake("GetBatteryCycles"), "reply 37");
}

TEST(ControllerBootloader, FaultsWaitForTheirStep) {
  const struct {
    Fault fault;
    Bytes command;
    const char* sent;
  } kCases[] = {
      {Fault::kFlip, Erase(kRow), "wrong checksum"},
      {Fault::kMute, Erase(kRow), ""},
      {Fault::kEmpty, Read(kRow), "read row without an address"},
      {Fault::kTwice, Erase(kRow), "erased | erased"},
      {Fault::kAgain, Read(kRow), "Resend"},
      {Fault::kAddress, Read(kRow), "row 0x01900 with 256 bytes"},
      {Fault::kPower, Read(kRow), ""},
  };
  for (const auto& faulty : kCases) {
    Bench bench;
    bench.controller.ArmAtStep(3, faulty.fault);
    EXPECT_EQ(bench.AskAndTake("GotoBootloader"), "reply OK");
    bench.controller.Receive(EncodeFrame(Erase(0x2000)));
    bench.Pass(milliseconds(50));
    EXPECT_EQ(bench.TakeSent(), "erased");
    bench.controller.Receive(EncodeFrame(faulty.command));
    bench.Pass(milliseconds(50));
    EXPECT_EQ(bench.TakeSent(), faulty.sent) << static_cast<int>(faulty.fault);
  }
  InBootloader bench;
  bench.Send(Erase(kRow));
  bench.controller.Arm(Fault::kStuckBit);
  EXPECT_EQ(bench.Send(Write(kRow, 0x11)), "written");
  EXPECT_EQ(std::ranges::count(bench.Row(kRow), 0x11), kExistingBytes - 1);
}

TEST(FirmwareFile, IsWhatItHolds) {
  EXPECT_EQ(ProgrammableRows().size(), 303U);
  FirmwareBytes bytes = {{0x17FF, 1}, {0x1800, 2}, {0xFFFF, 3}, {0x10000, 4}, {0x12800, 5}};
  EXPECT_EQ(HexText(bytes),
            ":0217FF000102E5\r\n"
            ":01FFFF0003FE\r\n"
            ":020000040001F9\r\n"
            ":0100000004FB\r\n"
            ":012800000"
            "5D2\r\n"
            ":00000001FF\r\n");
  const Flash factory;
  const std::vector<uint8_t> after = FlashAfterUpdate(factory.Bytes(), bytes);
  EXPECT_EQ(after[0x17FF], factory.Bytes()[0x17FF]);
  EXPECT_EQ(after[0x1800], 2);
  EXPECT_EQ(after[0x1801], 0xFF);
  EXPECT_EQ(after[0x2000], factory.Bytes()[0x2000]);
}

}  // namespace
}  // namespace simulator
