// How a step of a test says that it cannot go on: an exception that names the line of the test, which
// GoogleTest reports. Waiting steps poll until a generous limit, so that a slow machine is no reason to fail.
#pragma once

#include <chrono>
#include <functional>
#include <source_location>
#include <string>
#include <string_view>

namespace windows_test {

using Where = std::source_location;

inline constexpr std::chrono::seconds kPatience{30};
inline constexpr std::chrono::milliseconds kPollPause{5};

[[noreturn]] void Fail(const std::string& what, const Where& where);

// Asks again and again until the condition holds; fails when patience ends.
void WaitUntil(std::string_view what, const std::function<bool()>& condition,
               const Where& where = Where::current());

}  // namespace windows_test
