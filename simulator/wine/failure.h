// How a step says that it cannot go on, and how long anything may take on a slow machine.
#pragma once

#include <chrono>
#include <stdexcept>
#include <string>

namespace simulator {

inline constexpr std::chrono::milliseconds kPollPause{2};

[[noreturn]] inline void Fail(const std::string& what) {
  throw std::runtime_error(what);
}

}  // namespace simulator
