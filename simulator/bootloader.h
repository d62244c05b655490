// The part of the controller that takes new firmware. It answers its four commands and knows nothing else: no
// switch, no battery, no text. Which of the two parts runs after power-up is decided by what stands in the
// flash.
//
//   03 01 A0 A1 A2              erase one page     03
//   02 01 A0 A1 A2 and a row    write one row      02
//   01 40 A0 A1 A2              read one row       01 40 A0 A1 A2 and the row
//   08                          finished           08
//
// A0 A1 A2 is a word address, lowest byte first.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "simulator/flash.h"

namespace simulator {

class Bootloader {
 public:
  using Duration = std::chrono::microseconds;

  // How long the flash takes.
  Duration eraseTime = std::chrono::milliseconds(20);
  Duration writeTime = std::chrono::milliseconds(2);

  static bool IsCommand(std::span<const uint8_t> message);
  // What is wrong with a command; empty when it can be carried out.
  [[nodiscard]] static std::string Objection(std::span<const uint8_t> command);

  [[nodiscard]] Duration TimeFor(std::span<const uint8_t> command) const;
  // Carries out a command without an objection and returns the answer. From the first erased page to the
  // finish there is no firmware.
  std::vector<uint8_t> CarryOut(std::span<const uint8_t> command);
  // The power fails in the middle of the command.
  void CarryOutHalf(std::span<const uint8_t> command);

  // The page, or row, of the latest write is complete but for one bit.
  void SpoilRow(uint32_t row) { flash_.SpoilBit(row + Flash::kRowSize / 2); }

  [[nodiscard]] bool HasFirmware() const { return hasFirmware_; }
  [[nodiscard]] const Flash& Memory() const { return flash_; }

 private:
  Flash flash_;
  bool hasFirmware_ = true;  // stands in the flash as well
};

// The image address that a command or a read-back carries.
uint32_t AddressIn(std::span<const uint8_t> message);

}  // namespace simulator
