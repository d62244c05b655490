#include "simulator/wine/observer/report.h"

#include <algorithm>
#include <cstdio>

namespace observer {

void Report(std::string_view kind, std::string_view text) {
  std::string line = std::string(kind).append("\t").append(text);
  std::erase(line, '\r');
  std::ranges::replace(line, '\n', ' ');
  line += '\n';
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fflush(stdout);
}

std::string Utf8(std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(), size, nullptr, nullptr);
  return utf8;
}

std::wstring Wide(std::string_view utf8) {
  const int length = static_cast<int>(utf8.size());
  const int size = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, nullptr, 0);
  std::wstring text(static_cast<size_t>(size), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, text.data(), size);
  return text;
}

std::string Hex(unsigned long long number, int digits) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%0*llX", digits, number);
  return text;
}

std::wstring ClassOf(HWND window) {
  wchar_t name[256] = {};
  const int length = GetClassNameW(window, name, static_cast<int>(std::size(name)));
  return {name, static_cast<size_t>(length)};
}

}  // namespace observer
