#include "switches/profile_encoding.h"

#include <windows.h>

#include <optional>
#include <string>

#include "base/handles.h"

namespace veltra {
namespace {

constexpr WideChar kByteOrderMark = 0xFEFF;

bool IsUtf16(const std::string& bytes) {
  return bytes.starts_with("\xFF\xFE");
}

std::optional<std::string> ReadWhole(const WideText& path) {
  const UniqueFile file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return std::nullopt;
  LARGE_INTEGER size = {};
  if (!GetFileSizeEx(file.Get(), &size)) return std::nullopt;
  std::string bytes(static_cast<size_t>(size.QuadPart), '\0');
  DWORD count = 0;
  const auto wanted = static_cast<DWORD>(bytes.size());
  if (!ReadFile(file.Get(), bytes.data(), wanted, &count, nullptr) || count != wanted) return std::nullopt;
  return bytes;
}

bool WriteWhole(const WideText& path, WideView text) {
  const UniqueFile file(
      CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  DWORD count = 0;
  const auto size = static_cast<DWORD>(text.size() * sizeof(WideChar));
  return file && WriteFile(file.Get(), text.data(), size, &count, nullptr) && count == size;
}

WideText Decode(const std::string& bytes) {
  if (bytes.empty()) return {};
  const int length = static_cast<int>(bytes.size());
  WideText text(bytes.size(), WideChar{});  // no code page makes more characters than bytes
  const int count = MultiByteToWideChar(CP_ACP, 0, bytes.data(), length, text.data(), length);
  text.resize(static_cast<size_t>(count));
  return text;
}

}  // namespace

bool FitsCodePage(WideView text) {
  if (text.empty()) return true;
  BOOL lost = FALSE;
  const int size = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, text.data(),
                                       static_cast<int>(text.size()), nullptr, 0, nullptr, &lost);
  return size > 0 && !lost;
}

bool MakeProfileUtf16(const WideText& path) {
  std::string bytes;
  if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) {
    const std::optional<std::string> content = ReadWhole(path);
    if (!content) return false;
    bytes = *content;
  }
  if (IsUtf16(bytes)) return true;
  // A new file takes the place of the old one at once: whatever happens, one of them is there.
  const WideText fresh = path + TEXT(".new");
  if (WriteWhole(fresh, kByteOrderMark + Decode(bytes)) &&
      MoveFileExW(fresh.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING))
    return true;
  DeleteFileW(fresh.c_str());
  return false;
}

}  // namespace veltra
