#include "firmware/bootloader.h"

#include <algorithm>

#include "base/called_by_windows.h"
#include "firmware/firmware_state.h"
#include "firmware/read_hex_file.h"
#include "link/send_queue.h"
#include "system/numbers.h"
#include "system/system_state.h"

namespace veltra {
namespace {

bool IsOfBootloader(const PicRequest& request) {
  return request.bytes.front() < static_cast<uint8_t>(MessageType::kText) ||
         request.Text() == "GotoBootloader";
}

// What an earlier update left unanswered would keep everything behind it from being sent.
void DropUnanswered() {
  DropRequests(IsOfBootloader);
  TransmitNewHead();
}

void CALLBACK OnStepTimer(HWND, UINT message, UINT_PTR, DWORD) {
  CalledByWindows(TEXT("step timer"), message, 0, [] {
    Firmware().bootloader.OnTimeout();
    return 0;
  });
}

// A request of somebody else at the head is never answered by a bootloader.
void LogWhatIsInTheWay() {
  const PicRequest* head = HeadRequest();
  if (!head || IsOfBootloader(*head)) return;
  Log().WriteError(kFirmwareLogTag, TEXT("behind the unanswered request ") + Widen(head->Text()));
}

}  // namespace

std::optional<uint32_t> Bootloader::Start(const WideText& path) {
  const BootEffects effects = sequence.Start(ReadHexFile(path));
  if (effects.empty()) return std::nullopt;
  DropUnanswered();
  const uint32_t stepCount = sequence.StepCount();
  CarryOut(effects);
  return stepCount;
}

void Bootloader::OnEnterBootloader() {
  CarryOut(sequence.OnEnterBootloader());
}
void Bootloader::OnResponse(uint32_t address, Bytes data) {
  CarryOut(sequence.OnResponse(address, data));
}
void Bootloader::OnTimeout() {
  CarryOut(sequence.OnTimeout());
}

void Bootloader::CarryOut(const BootEffects& effects) {
  for (const BootEffect& effect : effects) std::visit([this](const auto& what) { Do(what); }, effect);
  guard.Set(IsRunning());
}

void Bootloader::Do(const SendRequest& request) {
  EnqueueRequest(nullptr, request.content, request.type);
}

// The link transmits only a new head by itself. One that waits behind a request of somebody else has not gone
// out.
void Bootloader::Do(const RepeatRequest&) {
  const PicRequest* head = HeadRequest();
  if (head && head->transmitted) TransmitHead();
}

void Bootloader::Do(const ArmStepTimer&) {
  Do(CancelStepTimer{});
  timer = SetTimer(nullptr, 0, stepTimeout, OnStepTimer);
  guard.Set(IsRunning());
}

void Bootloader::Do(const CancelStepTimer&) {
  if (timer) KillTimer(nullptr, timer);
  timer = 0;
}

void Bootloader::Do(const PostProgress& progress) {
  PostMessageW(Firmware().hFirmwareDlg, WM_FIRMWARE_PROGRESS, static_cast<WPARAM>(progress.progress),
               progress.detail);
}

void Bootloader::Do(const LogFailure& log) {
  Log().WriteError(kFirmwareLogTag, Widen(Describe(log.failure)));
  LogWhatIsInTheWay();
}

}  // namespace veltra
