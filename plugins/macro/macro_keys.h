// The keys that a macro can name, in both languages; each language understands the names of the other.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "base/text.h"

namespace macro {

struct KeyName {
  std::string_view english;
  std::string_view dutch;
  uint8_t virtualKey = 0;
  bool isExtended = false;
  bool isModifier = false;
};

// In the order in which the editor offers them. Letters and digits are not among them: they name themselves.
std::span<const KeyName> KeyNames();

// By any of its names, in any case; null when there is none.
const KeyName* FindKey(veltra::WideView name);

}  // namespace macro
