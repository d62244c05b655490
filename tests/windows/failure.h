// How a step says that it cannot go on, and how long anything may take on a slow machine.
#pragma once

#include <chrono>
#include <stdexcept>
#include <string>

namespace windows_test {

inline constexpr std::chrono::seconds kPatience{30};
inline constexpr std::chrono::milliseconds kPollPause{2};

[[noreturn]] inline void Fail(const std::string& what) {
  throw std::runtime_error(what);
}

}  // namespace windows_test
