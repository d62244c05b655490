// What the observer says: one line for each event and one for each command, UTF-8, words separated by tabs.
#pragma once

#include <windows.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace observer {

using Words = std::vector<std::string>;

// Writes the line; line ends in it become blanks.
void Report(std::string_view kind, std::string_view text = {});
// Something happened, in the words of the simulated tablet: "mouse left down".
inline void ReportEvent(std::string_view text) {
  Report("*", text);
}

std::string Utf8(std::wstring_view text);
std::wstring Wide(std::string_view utf8);
// "0x1B", with that many digits at least.
std::string Hex(unsigned long long number, int digits);
std::wstring ClassOf(HWND window);

}  // namespace observer
