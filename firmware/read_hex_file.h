// Reading a HEX file from the disk.
#pragma once

#include "base/text.h"
#include "firmware/hex_file.h"

namespace veltra {

// Nobody else may have the file open. Empty when it cannot be opened or read, or a line of it is at fault.
HexBytes ReadHexFile(const WideText& path);

}  // namespace veltra
