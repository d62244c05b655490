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

WideText ConvertFromAnsi(std::string_view text) {
  if (text.empty()) return {};
  const int length = static_cast<int>(text.size());
  const int needed = MultiByteToWideChar(CP_THREAD_ACP, 0, text.data(), length, nullptr, 0);
  if (needed <= 0) return {};
  WideText wide(static_cast<size_t>(needed), 0);
  const int converted = MultiByteToWideChar(CP_THREAD_ACP, 0, text.data(), length, wide.data(), needed);
  return converted == needed ? wide : WideText();
}

}  // namespace veltra
