// The board's I/O expander. Its outputs are changed in the image that the record holds and then written as
// whole bytes; the expander is never read back.
#pragma once

#include <cstdint>

namespace veltra {

// Bits of port A.
constexpr uint8_t kExpanderWlan = 0x02;     // A1
constexpr uint8_t kExpanderAlwaysA = 0x24;  // A2, A5
constexpr uint8_t kExpanderCodecGate =
    0x08;  // A3: while clear, nothing but the expander itself is written to
constexpr uint8_t kExpanderUsbBackOff = 0x10;  // A4
constexpr uint8_t kExpanderCodecA6 = 0x40;
constexpr uint8_t kExpanderCodecA7 = 0x80;
// Bits of port B.
constexpr uint8_t kExpanderCodecB0 = 0x01;
constexpr uint8_t kExpanderBluetooth = 0x04;  // B2
constexpr uint8_t kExpanderB3 = 0x08;         // start and resume, and some audio profiles
constexpr uint8_t kExpanderCodecB4 = 0x10;
constexpr uint8_t kExpanderMobilePhone = 0x40;   // B6
constexpr uint8_t kExpanderUsbBottomOff = 0x80;  // B7

// Change bits of a port's image and write the port. The image keeps the new bits when the write fails.
bool SetPortA(uint8_t bits);
bool ClearPortA(uint8_t bits);
bool SetPortB(uint8_t bits);
bool ClearPortB(uint8_t bits);

// Makes every pin an output, after the output values are in place.
void MakeAllPinsOutputs();

}  // namespace veltra
