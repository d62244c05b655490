// Reading a HEX file from the disk.
#pragma once

#include <optional>

#include "base/text.h"
#include "firmware/hex_file.h"

namespace veltra {

// Nobody else may have the file open. Empty when it cannot be opened or read, or takes more memory than there
// is.
std::optional<HexReading> ReadHexFile(const WideText& path);

}  // namespace veltra
