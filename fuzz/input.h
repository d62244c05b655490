// What an input is made of: numbers, lowest byte first, and pieces after their length. After its end all is
// 0.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <span>

namespace fuzz {

class Input {
 public:
  Input(const uint8_t* data, size_t size) : rest_(data, size) {}

  [[nodiscard]] bool AtEnd() const { return rest_.empty(); }
  std::span<const uint8_t> Take(size_t size) {
    const auto taken = rest_.first(std::min(size, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }
  uint64_t Number(size_t bytes) {
    uint64_t number = 0;
    int shift = 0;
    for (const uint8_t byte : Take(bytes)) {
      number |= uint64_t{byte} << shift;
      shift += 8;
    }
    return number;
  }
  uint8_t Byte() { return static_cast<uint8_t>(Number(1)); }
  // Up to 239 bytes one by one, from there on in steps of 64 to 1264.
  std::span<const uint8_t> Piece() {
    constexpr size_t kLargestExact = 239;
    constexpr size_t kStep = 64;
    const size_t length = Byte();
    return Take(length <= kLargestExact ? length : kLargestExact + 1 + (length - kLargestExact) * kStep);
  }
  template <class Table>
  const auto& Choice(const Table& table) {
    return std::data(table)[Byte() % std::size(table)];
  }

 private:
  std::span<const uint8_t> rest_;
};

}  // namespace fuzz
