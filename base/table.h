// Tables of what may arrive: a number, or a range of numbers, and what to call.
#pragma once

#include <cstddef>
#include <cstdint>

namespace veltra {

template <class Handler>
struct RangeRow {
  uint32_t first;
  uint32_t last;
  Handler handle;
};

// The row that the number belongs to; null when there is none.
template <class Row, size_t count>
const Row* FindRow(const Row (&rows)[count], uintptr_t number) {
  for (const Row& row : rows)
    if (number >= row.first && number <= row.last) return &row;
  return nullptr;
}

// Whether no two rows claim the same number.
template <class Row, size_t count>
constexpr bool AreApart(const Row (&rows)[count]) {
  for (size_t n = 0; n < count; ++n)
    for (size_t other = 0; other < n; ++other)
      if (rows[n].first <= rows[other].last && rows[other].first <= rows[n].last) return false;
  return true;
}

}  // namespace veltra
