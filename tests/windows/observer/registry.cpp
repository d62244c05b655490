#include "tests/windows/observer/registry.h"

#include <windows.h>

#include <cstring>
#include <map>
#include <span>
#include <stdexcept>

#include "base/handles.h"
#include "tests/windows/observer/report.h"

namespace observer {
namespace {

using veltra::UniqueRegistryKey;

HKEY RootOf(const std::string& name) {
  if (name == "user") return HKEY_CURRENT_USER;
  if (name == "machine") return HKEY_LOCAL_MACHINE;
  throw std::invalid_argument("the root is user or machine");
}

UniqueRegistryKey CreateKey(const std::string& root, const std::string& path) {
  HKEY key = nullptr;
  if (RegCreateKeyExW(RootOf(root), Wide(path).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                      nullptr) != ERROR_SUCCESS)
    throw std::runtime_error("the key cannot be made");
  return UniqueRegistryKey(key);
}

std::string Describe(DWORD type, std::span<const uint8_t> data) {
  if (type == REG_DWORD && data.size() == sizeof(DWORD)) {
    DWORD number = 0;
    std::memcpy(&number, data.data(), sizeof number);
    return "number:" + std::to_string(static_cast<int32_t>(number));
  }
  if (type == REG_SZ) {
    std::wstring text(data.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), data.data(), text.size() * sizeof(wchar_t));
    return "text:" + Utf8(text.substr(0, text.find(L'\0')));
  }
  return "type " + std::to_string(type) + ":" + Hex(data);
}

void SetValue(const UniqueRegistryKey& key, const std::string& name, DWORD type,
              std::span<const uint8_t> data) {
  if (RegSetValueExW(key.Get(), Wide(name).c_str(), 0, type, data.data(), static_cast<DWORD>(data.size())) !=
      ERROR_SUCCESS)
    throw std::runtime_error("the value cannot be written");
}

}  // namespace

std::string ListValues(const std::string& root, const std::string& path) {
  HKEY opened = nullptr;
  if (RegOpenKeyExW(RootOf(root), Wide(path).c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) return {};
  const UniqueRegistryKey key(opened);
  std::map<std::string, std::string> values;
  for (DWORD index = 0;; ++index) {
    wchar_t name[256] = {};
    uint8_t data[1024] = {};
    DWORD nameLength = static_cast<DWORD>(std::size(name));
    DWORD size = sizeof data;
    DWORD type = 0;
    const LSTATUS status = RegEnumValueW(key.Get(), index, name, &nameLength, nullptr, &type, data, &size);
    if (status == ERROR_NO_MORE_ITEMS) break;
    if (status != ERROR_SUCCESS) throw std::runtime_error("a value cannot be read");
    values[Utf8({name, nameLength})] = Describe(type, {data, size});
  }
  std::string list;
  for (const auto& [name, value] : values) list += (list.empty() ? "" : "\t") + name + "=" + value;
  return list;
}

void SetNumber(const std::string& root, const std::string& path, const std::string& name,
               unsigned long value) {
  const DWORD number = value;
  SetValue(CreateKey(root, path), name, REG_DWORD,
           {reinterpret_cast<const uint8_t*>(&number), sizeof number});
}

void SetText(const std::string& root, const std::string& path, const std::string& name,
             const std::string& text) {
  const std::wstring wide = Wide(text);
  SetValue(CreateKey(root, path), name, REG_SZ,
           {reinterpret_cast<const uint8_t*>(wide.c_str()), (wide.size() + 1) * sizeof(wchar_t)});
}

void DeleteKey(const std::string& root, const std::string& path) {
  const LSTATUS status = RegDeleteTreeW(RootOf(root), Wide(path).c_str());
  if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND)
    throw std::runtime_error("the key cannot be deleted");
}

}  // namespace observer
