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
  // time-out. Takes away a request that has been without its answer for as long as a step may take.
  std::optional<uint32_t> Start(const WideText& path);

  // The controller answered "GotoBootloader".
  void OnEnterBootloader();
  // The answer to "GotoBootloader" may still come, after the time-out: a reply that belongs to no request.
  [[nodiscard]] bool IsEntryLate() const;
  // A bootloader's answer, which takes its request out of the queue; address and data only of a read.
  void OnResponse(uint32_t address, Bytes data);
  // The controller's firmware speaks: what is late by now does not come any more.
  void OnFirmwareSpeaks() { lateAnswerDue = false; }
  // A step timer expired.
  void OnTimeout(UINT_PTR id);

  // A step waits for its answer.
  [[nodiscard]] bool IsRunning() const { return timer != 0; }

 private:
  template <class Step>
  void Take(Step step);
  void CarryOut(const BootEffects& effects);
  void FollowTimer();
  void Abandon();
  bool IsAnswerAwaited();
  [[nodiscard]] bool IsBehindAnother() const;
  BootEffects GiveUpTheOther();
  BootEffects GiveUp();
  void Do(const SendRequest& request);
  void Do(const RepeatRequest&);
  void Do(const ArmStepTimer&);
  void Do(const CancelStepTimer&);
  void Do(const PostProgress& progress);
  void Do(const LogFailure& log);

  uint32_t stepTimeout = 5000;  // ms for each answer
  UINT_PTR timer = 0;           // the running step timer, 0 when none
  bool lateAnswerDue = false;   // of the step that timed out
  UpdateGuard guard;
  BootSequence sequence;
};

}  // namespace veltra
