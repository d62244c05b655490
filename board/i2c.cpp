#include "board/i2c.h"

#include <windows.h>

#include <vector>

#include "board/board_state.h"
#include "board/expander.h"
#include "system/system_state.h"
#include "system/tray_icons.h"

namespace veltra {
namespace {

constexpr int32_t kBus = 0;

// Holds the library until it has come back: the session may end in there.
int32_t Transfer(uint8_t address, Bytes bytes) {
  const std::shared_ptr<const BoardLibrary> library = Board().library;
  uint8_t readBack = 0;
  uint32_t readLength = 0;
  return library->KEApiI2cXfer(kBus, address, bytes.data(), static_cast<uint32_t>(bytes.size()), &readBack,
                               &readLength);
}

// Before attempt 2, 3 and every later one.
DWORD PauseBefore(int attempt) {
  return attempt == 2 ? 50 : attempt == 3 ? 200 : 500;
}

bool IsInTime() {
  const std::optional<DWORD> until = Board().retriesUntil;
  return !until || static_cast<int32_t>(GetTickCount() - *until) < 0;
}

void ReportFailure(uint8_t address, int32_t reg, size_t count, int32_t result) {
  Log().WriteError(
      TEXT("Err I2C write"),
      FormatText(TEXT("Slaveaddr=%X,ucOffset=%X,iNumberBytes=%d,retval=%d"), address, reg, count, result));
  ShowTrayBalloon(FormatText(TEXT("Error during I2C write: %d-%X"), result, address));
}

}  // namespace

bool I2cWrite(uint8_t address, Bytes data, int32_t reg, int retries) {
  if (!Board().library || !Board().library->KEApiI2cXfer) return false;
  if (address != kExpanderAddress && !(Board().ExpanderPortA & kExpanderCodecGate)) return false;
  std::vector<uint8_t> bytes;
  if (reg >= 0) bytes.push_back(static_cast<uint8_t>(reg));
  bytes.insert(bytes.end(), data.begin(), data.end());

  int32_t result = 0;
  for (int attempt = 1; attempt == 1 || (attempt <= retries + 1 && IsInTime()); ++attempt) {
    if (attempt > 1) Sleep(PauseBefore(attempt));
    result = Transfer(address, bytes);
    if (result == 0) return true;
  }
  ReportFailure(address, reg, data.size(), result);
  return false;
}

void HurryWrites() {
  constexpr DWORD kRetryMs = 1000;
  Board().retriesUntil = GetTickCount() + kRetryMs;
}

void TakeTimeToWrite() {
  if (BoardState* board = recordInUse<BoardState>) board->retriesUntil.reset();
}

}  // namespace veltra
