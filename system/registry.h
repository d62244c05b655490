// Numbers in the registry.
#pragma once

#include <windows.h>

#include <optional>

#include "base/handles.h"

namespace veltra {

// Null when the key is missing.
UniqueRegistryKey OpenRegistryKey(HKEY root, const WCHAR* path);

struct RegistryNumber {
  DWORD value = 0;
  DWORD type = REG_NONE;
};
// Empty when the value is missing or not 4 bytes long; its type may be any.
std::optional<RegistryNumber> ReadRegistryNumber(const UniqueRegistryKey& key, const WCHAR* name);

}  // namespace veltra
