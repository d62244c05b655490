#include "plugins/macro/macro_ansi.h"

#include <windows.h>

#include <cstring>

namespace macro {

veltra::WideText FromAnsi(const char* text) {
  const int length = static_cast<int>(std::strlen(text));
  veltra::WideText wide(static_cast<size_t>(length), veltra::WideChar{});  // no more characters than bytes
  const int count =
      length == 0 ? 0 : MultiByteToWideChar(CP_THREAD_ACP, 0, text, length, wide.data(), length);
  wide.resize(static_cast<size_t>(count));
  return wide;
}

std::string ToAnsi(veltra::WideView text) {
  constexpr int kMostBytes = 4;  // of one character
  const int length = static_cast<int>(text.size());
  std::string ansi(text.size() * kMostBytes, '\0');
  const int size = static_cast<int>(ansi.size());
  const int count = length == 0 ? 0
                                : WideCharToMultiByte(CP_THREAD_ACP, 0, text.data(), length, ansi.data(),
                                                      size, nullptr, nullptr);
  ansi.resize(static_cast<size_t>(count));
  return ansi;
}

std::optional<size_t> FindForeignCharacter(veltra::WideView text) {
  for (size_t at = 0; at < text.size(); ++at) {
    BOOL foreign = FALSE;
    WideCharToMultiByte(CP_THREAD_ACP, WC_NO_BEST_FIT_CHARS, &text[at], 1, nullptr, 0, nullptr, &foreign);
    if (foreign) return at;
  }
  return std::nullopt;
}

}  // namespace macro
