// Reads what the resource compiler wrote, from front to back. Dies where the bytes end too early.
#pragma once

#include <windows.h>

#include <cstring>
#include <optional>
#include <span>
#include <string>

#include "pal/machine/die.h"

namespace pal {

class ByteReader {
 public:
  explicit ByteReader(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  [[nodiscard]] size_t Position() const { return at_; }
  [[nodiscard]] bool AtEnd() const { return at_ == bytes_.size(); }

  std::span<const uint8_t> Bytes(size_t count) {
    if (count > bytes_.size() - at_) Die("a resource ends too early");
    at_ += count;
    return bytes_.subspan(at_ - count, count);
  }
  void AlignTo4() { Bytes(-at_ % 4); }
  WORD Word() { return Number<WORD>(); }
  DWORD Dword() { return Number<DWORD>(); }
  // Ends with a unit of 0, which is taken too.
  std::u16string Text() {
    std::u16string text;
    while (const WORD unit = Word()) text.push_back(unit);
    return text;
  }
  // Where a text or a number may stand: the number, or nothing taken.
  std::optional<WORD> NumberForText() {
    constexpr WORD kNumberFollows = 0xFFFF;
    const size_t before = at_;
    if (Word() == kNumberFollows) return Word();
    at_ = before;
    return std::nullopt;
  }

 private:
  template <class Value>
  Value Number() {
    Value value;
    std::memcpy(&value, Bytes(sizeof(value)).data(), sizeof(value));
    return value;
  }

  std::span<const uint8_t> bytes_;
  size_t at_ = 0;
};

}  // namespace pal
