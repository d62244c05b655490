#include "tests/windows/observer/report.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace observer {

void Report(std::initializer_list<std::string_view> words) {
  std::string line;
  for (const std::string_view word : words) line.append(line.empty() ? "" : "\t").append(word);
  std::ranges::replace_if(
      line, [](char c) { return c == '\r' || c == '\n'; }, ' ');
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

std::string Hex(std::span<const uint8_t> bytes) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string hex;
  for (const uint8_t byte : bytes) hex.append({kDigits[byte >> 4], kDigits[byte & 0xF]});
  return hex;
}

std::string BytesFromHex(std::string_view hex) {
  if (hex.size() % 2 != 0) throw std::invalid_argument("half a byte");
  std::string bytes;
  for (size_t at = 0; at < hex.size(); at += 2)
    bytes.push_back(static_cast<char>(std::stoi(std::string(hex.substr(at, 2)), nullptr, 16)));
  return bytes;
}

}  // namespace observer
