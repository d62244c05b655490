// The registry: keys below two roots, with typed values.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pal {

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

class RegistryStore {
 public:
  RegistryStore();

  // Null for any other value.
  [[nodiscard]] std::shared_ptr<RegistryKey> Root(HKEY root) const;
  // The key itself for an empty path; null when there is none.
  static std::shared_ptr<RegistryKey> Find(std::shared_ptr<RegistryKey> key, std::u16string_view path);
  // Makes what is missing on the way.
  static std::shared_ptr<RegistryKey> Create(std::shared_ptr<RegistryKey> key, std::u16string_view path);

 private:
  std::shared_ptr<RegistryKey> currentUser_;
  std::shared_ptr<RegistryKey> localMachine_;
};

}  // namespace pal
