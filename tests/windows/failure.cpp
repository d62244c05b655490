#include "tests/windows/failure.h"

#include <filesystem>
#include <stdexcept>
#include <thread>

namespace windows_test {

void Fail(const std::string& what, const Where& where) {
  throw std::runtime_error(std::filesystem::path(where.file_name()).filename().string() + ":" +
                           std::to_string(where.line()) + ": " + what);
}

void WaitUntil(std::string_view what, const std::function<bool()>& condition, const Where& where) {
  const auto limit = std::chrono::steady_clock::now() + kPatience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > limit) Fail("waited in vain until " + std::string(what), where);
    std::this_thread::sleep_for(kPollPause);
  }
}

}  // namespace windows_test
