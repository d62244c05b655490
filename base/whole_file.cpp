#include "base/whole_file.h"

#include <windows.h>

#include "base/handles.h"

namespace veltra {

std::optional<std::string> ReadWholeFile(const WideText& path) {
  const UniqueFile file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
  LARGE_INTEGER size = {};
  if (!file || !GetFileSizeEx(file.Get(), &size)) return std::nullopt;
  std::string bytes(static_cast<size_t>(size.QuadPart), '\0');
  DWORD count = 0;
  const auto wanted = static_cast<DWORD>(bytes.size());
  if (!ReadFile(file.Get(), bytes.data(), wanted, &count, nullptr) || count != wanted) return std::nullopt;
  return bytes;
}

bool WriteWholeFile(const WideText& path, Bytes content) {
  const UniqueFile file(
      CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  const auto size = static_cast<DWORD>(content.size());
  DWORD count = 0;
  return file && WriteFile(file.Get(), content.data(), size, &count, nullptr) && count == size;
}

}  // namespace veltra
