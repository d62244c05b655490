// The registry: keys below two roots, with typed values.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pal {

class MachineMutex;

struct RegistryValue {
  std::u16string name;  // empty: the key's unnamed value
  DWORD type = REG_NONE;
  std::vector<uint8_t> data;
};

// Names of keys and values keep the spelling with which they were made; looking for them takes no regard to
// case.
struct RegistryKey {
  std::u16string path;  // from the root on, "HKEY_CURRENT_USER\SOFTWARE\..."
  std::u16string name;
  std::vector<RegistryValue> values;  // in the order in which they were first written
  std::vector<std::shared_ptr<RegistryKey>> keys;

  [[nodiscard]] RegistryValue* FindValue(std::u16string_view valueName);
  void SetValue(std::u16string_view valueName, DWORD type, std::vector<uint8_t> data);
};

class Registry {
 public:
  explicit Registry(MachineMutex& mutex);

  void Set(HKEY root, std::u16string_view path, std::u16string_view name, DWORD type,
           std::span<const uint8_t> data);
  void SetDword(HKEY root, std::u16string_view path, std::u16string_view name, uint32_t value);
  // Empty when there is no such value of that type.
  [[nodiscard]] std::optional<uint32_t> Dword(HKEY root, std::u16string_view path,
                                              std::u16string_view name) const;
  [[nodiscard]] std::vector<std::u16string> ValueNames(HKEY root, std::u16string_view path) const;

  // ---- for the calls of Windows ----
  // Null for any other value.
  [[nodiscard]] std::shared_ptr<RegistryKey> Root(HKEY root) const;
  // The key itself for an empty path; null when there is none.
  static std::shared_ptr<RegistryKey> Find(std::shared_ptr<RegistryKey> key, std::u16string_view path);
  // Makes what is missing on the way.
  static std::shared_ptr<RegistryKey> Create(std::shared_ptr<RegistryKey> key, std::u16string_view path);

 private:
  [[nodiscard]] std::shared_ptr<RegistryKey> NeedRoot(HKEY root) const;

  MachineMutex& mutex_;
  std::shared_ptr<RegistryKey> currentUser_;
  std::shared_ptr<RegistryKey> localMachine_;
};

}  // namespace pal
