#include "board/expander.h"

#include "board/board_state.h"
#include "board/i2c.h"

namespace veltra {
namespace {

constexpr int32_t kDirectionA = 0x00;
constexpr int32_t kDirectionB = 0x01;
constexpr int32_t kOutputA = 0x12;
constexpr int32_t kOutputB = 0x13;

bool WriteRegister(int32_t reg, uint8_t value) {
  return I2cWrite(kExpanderAddress, {&value, 1}, reg, 0);
}

bool Change(uint8_t& image, int32_t reg, uint8_t set, uint8_t clear) {
  image = static_cast<uint8_t>((image | set) & ~clear);
  return WriteRegister(reg, image);
}

}  // namespace

bool SetPortA(uint8_t bits) {
  return Change(Board().ExpanderPortA, kOutputA, bits, 0);
}
bool ClearPortA(uint8_t bits) {
  return Change(Board().ExpanderPortA, kOutputA, 0, bits);
}
bool SetPortB(uint8_t bits) {
  return Change(Board().ExpanderPortB, kOutputB, bits, 0);
}
bool ClearPortB(uint8_t bits) {
  return Change(Board().ExpanderPortB, kOutputB, 0, bits);
}

void MakeAllPinsOutputs() {
  WriteRegister(kDirectionA, 0x00);
  WriteRegister(kDirectionB, 0x00);
}

}  // namespace veltra
