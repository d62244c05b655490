#include "base/ansi_text.h"

#include <windows.h>

namespace veltra {

std::optional<std::string> ConvertToAnsi(WideView text) {
  if (text.empty()) return std::string();
  const int length = static_cast<int>(text.size());
  const int needed = WideCharToMultiByte(CP_THREAD_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  if (needed <= 0) return std::nullopt;
  std::string ansi(static_cast<size_t>(needed), '\0');
  if (WideCharToMultiByte(CP_THREAD_ACP, 0, text.data(), length, ansi.data(), needed, nullptr, nullptr) !=
      needed)
    return std::nullopt;
  return ansi;
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
