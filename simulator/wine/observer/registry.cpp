// The tool's settings: root "user" or "machine".
#include <cstring>
#include <stdexcept>

#include "base/handles.h"
#include "simulator/wine/observer/commands.h"

namespace observer {
namespace {

constexpr wchar_t kPath[] = L"SOFTWARE\\Veltra\\Sarvik5";

HKEY RootOf(const std::string& name) {
  return name == "user" ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
}

// "NAME=NUMBER" of each value, "NAME=" of one that is no number.
std::string RunList(const Words& words) {
  HKEY opened = nullptr;
  if (RegOpenKeyExW(RootOf(words[1]), kPath, 0, KEY_READ, &opened) != ERROR_SUCCESS) return {};
  const veltra::UniqueRegistryKey key(opened);
  std::string list;
  for (DWORD index = 0;; ++index) {
    wchar_t name[256] = {};
    uint8_t data[1024] = {};
    auto nameLength = static_cast<DWORD>(std::size(name));
    DWORD size = sizeof data;
    DWORD type = 0;
    if (RegEnumValueW(key.Get(), index, name, &nameLength, nullptr, &type, data, &size) != ERROR_SUCCESS)
      return list;
    int32_t number = 0;
    std::memcpy(&number, data, sizeof number);
    list.append(index ? "\t" : "").append(Utf8({name, nameLength})).append("=");
    if (type == REG_DWORD) list += std::to_string(number);
  }
}

std::string SetValue(const Words& words, DWORD type, const void* data, size_t size) {
  if (RegSetKeyValueW(RootOf(words[1]), kPath, Wide(words[2]).c_str(), type, data,
                      static_cast<DWORD>(size)) != ERROR_SUCCESS)
    throw std::runtime_error("the value cannot be written");
  return {};
}

std::string RunSetNumber(const Words& words) {
  const auto number = static_cast<DWORD>(Number(words[3]));
  return SetValue(words, REG_DWORD, &number, sizeof number);
}

std::string RunSetText(const Words& words) {
  const std::wstring text = Wide(words[3]);
  return SetValue(words, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

std::string RunForget(const Words&) {
  for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) RegDeleteTreeW(root, kPath);
  return {};
}

constexpr Command kCommands[] = {
    {"list", 1, RunList},             // ROOT
    {"set-number", 3, RunSetNumber},  // ROOT NAME NUMBER
    {"set-text", 3, RunSetText},      // ROOT NAME TEXT
    {"forget", 0, RunForget},         // all settings
};

}  // namespace

std::span<const Command> RegistryCommands() {
  return kCommands;
}

}  // namespace observer
