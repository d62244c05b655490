// Unique identifiers.
#pragma once

#include <cstdint>

struct GUID {
  uint32_t Data1;
  uint16_t Data2;
  uint16_t Data3;
  uint8_t Data4[8];

  bool operator==(const GUID&) const = default;
};
using IID = GUID;
using CLSID = GUID;
using REFIID = const IID&;
using REFCLSID = const CLSID&;
using LPCGUID = const GUID*;
