// What must cross the I2C bus, written out from the board's own tables and not from the tool's.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace veltra {

using BusLines = std::vector<std::string>;

// Builds a transcript: one line for each transfer, "20: 12 24". Follows the expander's two outputs and the
// speaker amplifier's gain step through the calls.
class ExpectedBus {
 public:
  // The pieces of the sequences.
  void StartRadios();  // WLAN and Bluetooth
  void PhoneAnswered();
  void UsbOff();
  void UsbOn();
  // Up to the first wait, between the waits, and behind them, with the microphone's level 7.
  void PowerUpSupply();
  void PowerUpCodec();
  void PowerUpRest();
  void PowerDown();

  // The lines since the last call.
  BusLines Take() { return std::exchange(lines_, {}); }

 private:
  using Data = std::vector<uint8_t>;

  void Line(uint8_t device, const Data& data);
  void PortA(int set, int clear = 0);
  void PortB(int set, int clear = 0);
  void Block(uint16_t address, std::span<const uint8_t> data, uint16_t step);
  void Codec(uint16_t address, const Data& data) { Block(address, data, 60); }
  void Value(uint16_t address, uint32_t bits);
  void Pair(uint16_t first, uint16_t second, uint32_t bits);
  void Selector(uint16_t first, uint16_t last, uint16_t chosen);
  void SpeakerAmp(uint8_t enable);
  void Headphones(uint8_t reg, uint8_t value);
  void Download();
  void Microphone();
  void ResetPaths();
  void NormalProfile();

  uint8_t portA_ = 0;
  uint8_t portB_ = 0;
  uint8_t gainStep_ = 0;
  BusLines lines_;
};

}  // namespace veltra
