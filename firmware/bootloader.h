// A firmware update on its way: the sequence of its steps, carried out on the link and the clock.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>

#include "base/text.h"
#include "firmware/boot_sequence.h"
#include "firmware/update_guard.h"

namespace veltra {

constexpr const WCHAR* kFirmwareLogTag = TEXT("Firmware update");

class Bootloader {
 public:
  // Reads the file and asks the controller to enter its bootloader. Returns the number of answers to expect
  // behind that one; nothing when the file cannot be used: then nothing was sent. A closed port shows as a
  // time-out.
  std::optional<uint32_t> Start(const WideText& path);

  // The controller answered "GotoBootloader".
  void OnEnterBootloader();
  // A bootloader's answer; address and data only of a read.
  void OnResponse(uint32_t address, Bytes data);
  // The step timer expired.
  void OnTimeout();

  // A step waits for its answer.
  [[nodiscard]] bool IsRunning() const { return timer != 0; }

 private:
  void CarryOut(const BootEffects& effects);
  void Do(const SendRequest& request);
  void Do(const RepeatRequest&);
  void Do(const ArmStepTimer&);
  void Do(const CancelStepTimer&);
  void Do(const PostProgress& progress);
  void Do(const LogFailure& log);

  uint32_t stepTimeout = 5000;  // ms for each answer
  UINT_PTR timer = 0;           // the running step timer, 0 when none
  UpdateGuard guard;
  BootSequence sequence;
};

}  // namespace veltra
