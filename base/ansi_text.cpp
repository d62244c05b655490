#include "base/ansi_text.h"

#include <windows.h>

namespace veltra {
namespace {

std::optional<std::string> Convert(WideView text, UINT codePage) {
  if (text.empty()) return std::string();
  const int length = static_cast<int>(text.size());
  const int needed = WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  if (needed <= 0) return std::nullopt;
  std::string bytes(static_cast<size_t>(needed), '\0');
  if (WideCharToMultiByte(codePage, 0, text.data(), length, bytes.data(), needed, nullptr, nullptr) != needed)
    return std::nullopt;
  return bytes;
}

}  // namespace

std::optional<std::string> ConvertToAnsi(WideView text) {
  return Convert(text, CP_THREAD_ACP);
}

std::string ConvertToUtf8(WideView text) {
  return Convert(text, CP_UTF8).value_or("");
}

std::optional<WideText> ConvertFromAnsi(std::string_view text) {
  if (text.empty()) return WideText();
  const int length = static_cast<int>(text.size());
  const int needed = MultiByteToWideChar(CP_THREAD_ACP, 0, text.data(), length, nullptr, 0);
  if (needed <= 0) return std::nullopt;
  WideText wide(static_cast<size_t>(needed), WideChar{});
  if (MultiByteToWideChar(CP_THREAD_ACP, 0, text.data(), length, wide.data(), needed) != needed)
    return std::nullopt;
  return wide;
}

}  // namespace veltra
