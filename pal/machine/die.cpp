#include "pal/machine/die.h"

#include <cstdio>
#include <cstdlib>

namespace pal {

void Die(std::string_view what) {
  std::fprintf(stderr, "pal: %.*s\n", static_cast<int>(what.size()), what.data());
  std::abort();
}

}  // namespace pal
