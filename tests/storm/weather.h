// The storm as lines of a story: what a person, a line, a Windows and other programs may do to a tablet. The
// same seed makes the same lines.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace storm {

// The same numbers on every machine.
class Dice {
 public:
  explicit Dice(uint64_t seed) : state_(seed * 2 + 1) {}
  // 0 to count - 1.
  size_t Below(size_t count);

 private:
  uint64_t state_;
};

// Lines parted by semicolons: before the first start, and the start; one act.
std::string SetUp(Dice& dice);
std::string Gust(Dice& dice);

// What lets everything through again, with no finger anywhere.
extern const std::string_view kCalm;

}  // namespace storm
