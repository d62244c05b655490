// Files that are read or written in one go.
#pragma once

#include <optional>
#include <string>

#include "base/text.h"

namespace veltra {

// Empty when it cannot be opened or read.
std::optional<std::string> ReadWholeFile(const WideText& path);

// Makes the file, or replaces what it holds.
bool WriteWholeFile(const WideText& path, Bytes content);

}  // namespace veltra
