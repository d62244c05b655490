#include "firmware/bootloader.h"

#include <new>
#include <stdexcept>
#include <utility>

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

void CALLBACK OnStepTimer(HWND, UINT message, UINT_PTR id, DWORD) {
  CalledByWindows(TEXT("step timer"), message, 0, [id] {
    Firmware().bootloader.OnTimeout(id);
    return 0;
  });
}

void LogTakenAway(const PicRequest& request) {
  Log().WriteError(kFirmwareLogTag, TEXT("unanswered, taken away: ") + Widen(request.Text()));
}

void LogRefusal(const std::optional<HexReading>& file, const WideText& path) {
  std::string why = "cannot be read";
  if (file) why = file->fault ? Describe(*file->fault) : "no byte lies where an update writes";
  Log().WriteError(kFirmwareLogTag, TEXT("refused, ") + Widen(why) + TEXT(": ") + path);
}

struct StepTag {
  MessageType type;
  const WCHAR* tag;
};

constexpr StepTag kStepTags[] = {
    {MessageType::kErasePage, TEXT("ErasePageFromDevice")},
    {MessageType::kWriteRow, TEXT("WriteRowToDevice")},
    {MessageType::kReadMemory, TEXT("ReadRowFromDevice")},
    {MessageType::kFinished, TEXT("Verified")},  // else it is not sent
};

void LogStep(const SendRequest& request) {
  const bool isAddressed = request.content.size() >= kAddressedLength;
  for (const StepTag& step : kStepTags)
    if (step.type == request.type)
      Log().WriteDetail(step.tag, isAddressed ? FormatText(TEXT("0x%05X"), AddressIn(request.content))
                                              : WideText(TEXT("every row")));
}

bool IsOfVerifying(const BootFailure& failure) {
  return failure.detail == static_cast<int32_t>(BootError::kRowDiffers) ||
         failure.detail == static_cast<int32_t>(BootError::kRowNotReadBack);
}

}  // namespace

std::optional<uint32_t> Bootloader::Start(const WideText& path) {
  BootEffects effects;
  try {
    const std::optional<HexReading> file = ReadHexFile(path);
    effects = sequence.Start(file ? file->bytes : HexBytes());
    if (effects.empty()) {
      LogRefusal(file, path);
      return std::nullopt;
    }
    if (const std::optional<PicRequest> lost = TakeUnansweredHead(stepTimeout)) LogTakenAway(*lost);
  } catch (const std::bad_alloc&) {
    return std::nullopt;
  }
  const uint32_t stepCount = sequence.StepCount();
  Take([&] { return effects; });
  return stepCount;
}

void Bootloader::OnEnterBootloader() {
  Take([&] { return sequence.OnEnterBootloader(); });
}

bool Bootloader::IsEntryLate() const {
  return lateAnswerDue && sequence.state == BootState::kWaitBootloader;
}

void Bootloader::OnResponse(uint32_t address, Bytes data) {
  if (IsAnswerAwaited()) Take([&] { return sequence.OnResponse(address, data); });
}

void Bootloader::OnTimeout(UINT_PTR id) {
  if (id != timer) {  // of an earlier step
    KillTimer(nullptr, id);
    return;
  }
  Take([&] { return IsBehindAnother() ? GiveUpTheOther() : GiveUp(); });
}

// Until the bootloader is there, what answers is still busy with an earlier update: "GotoBootloader" keeps
// its place. The request of a step that timed out has left the queue already.
bool Bootloader::IsAnswerAwaited() {
  if (sequence.state == BootState::kWaitBootloader) return IsRunning();
  return std::exchange(lateAnswerDue, false) || TakeAnsweredRequest(static_cast<DWORD>(GetMessageTime()));
}

// "GotoBootloader" waits behind a request that was on its way when the update started.
bool Bootloader::IsBehindAnother() const {
  const PicQueue& queue = Link().picQueue;
  return queue.size() > 1 && IsOfBootloader(queue.back());
}

// It has had its time by now.
BootEffects Bootloader::GiveUpTheOther() {
  if (const std::optional<PicRequest> other = TakeUnansweredHead(0)) LogTakenAway(*other);
  TransmitNewHead();
  return {ArmStepTimer{}};
}

BootEffects Bootloader::GiveUp() {
  const PicRequest* head = HeadRequest();
  lateAnswerDue = head && head->transmitted && IsOfBootloader(*head);
  return sequence.OnTimeout();
}

// Whatever goes wrong inside, the person gets to see an end.
template <class Step>
void Bootloader::Take(Step step) {
  try {
    CarryOut(step());
  } catch (const StateEnded&) {
    throw;
  } catch (...) {
    Abandon();
  }
}

void Bootloader::Abandon() {
  Do(CancelStepTimer{});
  Do(PostProgress{BootProgress::kTimeout, static_cast<int32_t>(sequence.state)});
  FollowTimer();
}

void Bootloader::CarryOut(const BootEffects& effects) {
  for (const BootEffect& effect : effects) std::visit([this](const auto& what) { Do(what); }, effect);
  FollowTimer();
}

// An update runs while its step timer does.
void Bootloader::FollowTimer() {
  if (!guard.Set(IsRunning())) return;
  if (IsRunning()) {
    ReserveQueue(sequence.state == BootState::kWaitBootloader);
  } else {
    DropRequests(IsOfBootloader);
    ReleaseQueue();
  }
}

void Bootloader::Do(const SendRequest& request) {
  lateAnswerDue = false;
  LogStep(request);
  EnqueueForUpdate(request.content, request.type);
}

// The link transmits only a new head by itself.
void Bootloader::Do(const RepeatRequest&) {
  const PicRequest* head = HeadRequest();
  if (head && head->transmitted) TransmitHead();
}

void Bootloader::Do(const ArmStepTimer&) {
  Do(CancelStepTimer{});
  timer = SetTimer(nullptr, 0, stepTimeout, OnStepTimer);
  if (!timer) throw std::runtime_error("no timer");
  FollowTimer();
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
  const WideText text = Widen(Describe(log.failure));
  if (IsOfVerifying(log.failure)) Log().WriteDetail(TEXT("Verify fail"), text);
  Log().WriteError(kFirmwareLogTag, text);
}

}  // namespace veltra
