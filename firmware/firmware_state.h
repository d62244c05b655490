// The update of the controller's firmware: the room's record.
#pragma once

#include <windows.h>

#include "base/record.h"
#include "firmware/bootloader.h"

namespace veltra {

struct FirmwareState {
  HWND hFirmwareDlg = nullptr;  // hears of the progress
  Bootloader bootloader;
};

inline FirmwareState& Firmware() {
  return RecordOf<FirmwareState>();
}

}  // namespace veltra
