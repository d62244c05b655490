// Tables whose rows are told apart by one member.
#pragma once

#include <cstddef>

namespace veltra {

// Whether no two rows carry the same.
template <class Row, size_t count, class Key>
constexpr bool AreUnique(const Row (&rows)[count], Key Row::*key) {
  for (size_t n = 0; n < count; ++n)
    for (size_t other = 0; other < n; ++other)
      if (rows[n].*key == rows[other].*key) return false;
  return true;
}

}  // namespace veltra
