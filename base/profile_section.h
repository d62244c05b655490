// One section of a profile (ini) file, read whole: a list of many keys would otherwise open the file for
// each. Values read as Windows' private-profile functions give them.
#pragma once

#include <cstdint>
#include <map>

#include "base/text.h"

namespace veltra {

// What is left of a text that was written as the value of a key, read and written again, however often: the
// first of its lines, without blanks and quotes around it.
WideText AsStored(WideView text);

class ProfileSection {
 public:
  ProfileSection() = default;
  // Lines "key=value", each with a terminator.
  explicit ProfileSection(WideView lines);

  // Without blanks and one pair of quotes around it; empty when the key is missing. Keys are compared without
  // regard to the case of ASCII letters; the first of a name counts.
  [[nodiscard]] WideText Text(WideView key) const;
  // `otherwise` when the key is missing or empty. Decimal, 0x, 0o or 0b, with a sign; what follows the digits
  // is ignored, upper bits are lost, and what is no number is 0.
  [[nodiscard]] int32_t Number(WideView key, int32_t otherwise) const;

 private:
  std::map<WideText, WideText, std::less<>> values_;  // by key in upper case
};

}  // namespace veltra
