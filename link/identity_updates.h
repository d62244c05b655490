// Identification updates: other programs give the tablet its serial numbers and versions through the tool.
#pragma once

#include "base/text.h"

namespace veltra {

constexpr size_t kLongestIdentityUpdate = 31;  // bytes

// Stores the value as if the controller had reported it and sends the controller the update. `tag` is one of
// kFirstIdentityUpdate to kLastIdentityUpdate. A value that is longer than 31 bytes, or than its field, is
// refused whole: nothing stored, nothing sent, a line in the log.
void UpdateIdentity(uint32_t tag, Bytes value);

}  // namespace veltra
