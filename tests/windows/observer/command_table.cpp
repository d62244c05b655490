#include "tests/windows/observer/command_table.h"

#include <stdexcept>

namespace observer {

unsigned long long Number(const std::string& word) {
  return word.starts_with('-') ? static_cast<unsigned long long>(std::stoll(word, nullptr, 0))
                               : std::stoull(word, nullptr, 0);
}

std::optional<LRESULT> TrySend(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  constexpr UINT kAnswerLimitMs = 30000;
  DWORD_PTR result = 0;
  if (!SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, kAnswerLimitMs, &result)) return {};
  return static_cast<LRESULT>(result);
}

LRESULT Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const std::optional<LRESULT> result = TrySend(window, message, wParam, lParam);
  if (!result) throw std::runtime_error("no answer, error " + std::to_string(GetLastError()));
  return *result;
}

}  // namespace observer
