#include "system/registry.h"

namespace veltra {

UniqueRegistryKey OpenRegistryKey(HKEY root, const WCHAR* path) {
  HKEY opened = nullptr;
  return UniqueRegistryKey(RegOpenKeyExW(root, path, 0, KEY_READ, &opened) == ERROR_SUCCESS ? opened
                                                                                            : nullptr);
}

std::optional<RegistryNumber> ReadRegistryNumber(const UniqueRegistryKey& key, const WCHAR* name) {
  RegistryNumber number;
  DWORD size = sizeof(number.value);
  const LONG error =
      RegQueryValueExW(key.Get(), name, nullptr, &number.type, reinterpret_cast<BYTE*>(&number.value), &size);
  if (error != ERROR_SUCCESS || size != sizeof(number.value)) return std::nullopt;
  return number;
}

}  // namespace veltra
