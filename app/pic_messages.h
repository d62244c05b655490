// The controller's vocabulary: what the tool does with each message that it sends.
#pragma once

#include "base/text.h"

namespace veltra {

// One good message, type byte first. An empty one is ignored.
void HandlePicMessage(Bytes message);

}  // namespace veltra
