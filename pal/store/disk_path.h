// The text of Windows paths.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

namespace pal {

// A path taken apart: its drive and the names on the way.
struct PathParts {
  DWORD error = ERROR_SUCCESS;  // it is no path of the machine's disk
  char16_t drive = 0;           // in upper case
  std::vector<std::u16string> names;
};

// `directory` is the full path in which a relative path starts.
PathParts TakePathApart(std::u16string_view path, std::u16string_view directory);
// "C:\a\b"; a drive alone is "C:\".
std::u16string JoinPath(const PathParts& parts);

}  // namespace pal
