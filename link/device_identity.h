// What the controller says about itself, the board and the touch screen: a record.
#pragma once

#include <optional>
#include <string>

#include "base/text.h"

namespace veltra {

struct DeviceIdentity {
  std::string firmwareVersionText;  // the same as firmwareVersion, as 8-bit text
  WideText firmwareVersion;
  WideText serialNumber;
  WideText pcbSerial;
  WideText pcbVersion;
  WideText touchSerial;
  WideText touchVersion;
  WideText touchFirmware;
};

// The longest value of each field, in characters. A longer one is refused whole.
constexpr size_t kFirmwareVersionLength = 7;
constexpr size_t kIdentityLength = 15;
constexpr size_t kTouchSerialLength = 31;

struct IdentityField {
  WideText DeviceIdentity::*text;
  size_t longest;
};

constexpr IdentityField kFirmwareVersion = {&DeviceIdentity::firmwareVersion, kFirmwareVersionLength};
constexpr IdentityField kSerialNumber = {&DeviceIdentity::serialNumber, kIdentityLength};
constexpr IdentityField kPcbSerial = {&DeviceIdentity::pcbSerial, kIdentityLength};
constexpr IdentityField kPcbVersion = {&DeviceIdentity::pcbVersion, kIdentityLength};
constexpr IdentityField kTouchVersion = {&DeviceIdentity::touchVersion, kIdentityLength};
constexpr IdentityField kTouchFirmware = {&DeviceIdentity::touchFirmware, kIdentityLength};
constexpr IdentityField kTouchSerial = {&DeviceIdentity::touchSerial, kTouchSerialLength};

}  // namespace veltra
