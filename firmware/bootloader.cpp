#include "firmware/bootloader.h"

#include <algorithm>

#include "app/app_state.h"
#include "base/debug_output.h"
#include "firmware/read_hex_file.h"
#include "link/send_queue.h"

namespace veltra {
namespace {

bool IsOfBootloader(const PicRequest& request) {
  return request.bytes.front() < static_cast<uint8_t>(MessageType::kText) ||
         request.Text() == "GotoBootloader";
}

// What an earlier update left unanswered would keep everything behind it from being sent.
void DropUnanswered() {
  PicQueue& queue = GetAppState().picQueue;
  std::erase_if(queue, IsOfBootloader);
  if (!queue.empty() && !queue.front().transmitted) TransmitHead();
}

void CALLBACK OnStepTimer(HWND, UINT, UINT_PTR, DWORD) {
  try {
    if (const auto state = KeepAppState()) state->bootloader.OnTimeout();
  } catch (...) {
    Trace(TEXT("step timer ended by an exception"));
  }
}

// A request of somebody else at the head is never answered by a bootloader.
void LogWhatIsInTheWay() {
  const PicQueue& queue = GetAppState().picQueue;
  if (queue.empty() || IsOfBootloader(queue.front())) return;
  GetAppState().log.WriteError(kFirmwareLogTag,
                               TEXT("behind the unanswered request ") + Widen(queue.front().Text()));
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
  const PicQueue& queue = GetAppState().picQueue;
  if (!queue.empty() && queue.front().transmitted) TransmitHead();
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
  PostMessageW(GetAppState().hFirmwareDlg, WM_FIRMWARE_PROGRESS, static_cast<WPARAM>(progress.progress),
               progress.detail);
}

void Bootloader::Do(const LogFailure& log) {
  GetAppState().log.WriteError(kFirmwareLogTag, Widen(Describe(log.failure)));
  LogWhatIsInTheWay();
}

}  // namespace veltra
