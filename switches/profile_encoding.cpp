#include "switches/profile_encoding.h"

#include <windows.h>

#include <optional>
#include <string>

#include "base/whole_file.h"

namespace veltra {
namespace {

constexpr WideChar kByteOrderMark = 0xFEFF;

bool IsUtf16(const std::string& bytes) {
  return bytes.starts_with("\xFF\xFE");
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
    const std::optional<std::string> content = ReadWholeFile(path);
    if (!content) return false;
    bytes = *content;
  }
  if (IsUtf16(bytes)) return true;
  // A new file takes the place of the old one at once: whatever happens, one of them is there.
  const WideText fresh = path + TEXT(".new");
  const WideText text = kByteOrderMark + Decode(bytes);
  const auto* units = reinterpret_cast<const uint8_t*>(text.data());
  if (WriteWholeFile(fresh, {units, text.size() * sizeof(WideChar)}) &&
      MoveFileExW(fresh.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING))
    return true;
  DeleteFileW(fresh.c_str());
  return false;
}

}  // namespace veltra
