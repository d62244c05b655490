#include "firmware/boot_sequence.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

namespace veltra {
namespace {

constexpr std::string_view kEnterBootloader = "GotoBootloader";
constexpr uint8_t kOnePage = 1;
constexpr uint8_t kOneRow = 1;
constexpr uint8_t kInstructionsOfRow = kFlashRowSize / 4;

// A count and the controller's word address, 24 bits, lowest first.
std::vector<uint8_t> Addressed(uint8_t count, uint32_t imageAddress) {
  const uint32_t word = imageAddress / 2;
  return {count, static_cast<uint8_t>(word), static_cast<uint8_t>(word >> 8),
          static_cast<uint8_t>(word >> 16)};
}

BootEffects CancelTimer() {
  BootEffects effects;
  effects.emplace_back(CancelStepTimer{});
  return effects;
}

void Send(BootEffects& effects, MessageType type, std::vector<uint8_t> content) {
  effects.emplace_back(ArmStepTimer{});
  effects.emplace_back(SendRequest{type, std::move(content)});
}

void Fail(BootEffects& effects, BootFailure failure) {
  effects.emplace_back(LogFailure{failure});
  effects.emplace_back(PostProgress{failure.progress, failure.detail});
}

BootFailure ErrorAt(const BootSequence& sequence, BootError error, uint32_t address) {
  BootFailure failure;
  failure.progress = BootProgress::kError;
  failure.detail = static_cast<int32_t>(error);
  failure.state = sequence.state;
  failure.address = address;
  return failure;
}

// ---- the commands

void ErasePage(BootEffects& effects, uint32_t page) {
  Send(effects, MessageType::kErasePage, Addressed(kOnePage, page));
}

void WriteRow(const BootSequence& sequence, BootEffects& effects, uint32_t address) {
  const FlashRow* row = sequence.fileImage.FindRow(address);
  if (!row) return Fail(effects, ErrorAt(sequence, BootError::kRowMissing, address));
  std::vector<uint8_t> content = Addressed(kOneRow, address);
  content.insert(content.end(), row->bytes.begin(), row->bytes.end());
  Send(effects, MessageType::kWriteRow, std::move(content));
}

void ReadRow(BootEffects& effects, uint32_t row) {
  Send(effects, MessageType::kReadMemory, Addressed(kInstructionsOfRow, row));
}

// ---- what an answer leads to

void OnErased(BootSequence& sequence, BootEffects& effects) {
  sequence.eraseQueue.pop_front();
  if (!sequence.eraseQueue.empty()) return ErasePage(effects, sequence.eraseQueue.front());
  sequence.state = BootState::kWriting;
  WriteRow(sequence, effects, sequence.writeQueue.front());
}

void OnWritten(BootSequence& sequence, BootEffects& effects) {
  sequence.writeQueue.pop_front();
  if (!sequence.writeQueue.empty()) return WriteRow(sequence, effects, sequence.writeQueue.front());
  sequence.state = BootState::kReading;
  ReadRow(effects, sequence.verifyQueue.front());
}

std::optional<BootFailure::Difference> FirstDifference(const FlashRow& file, const FlashRow& controller) {
  const auto [in, out] = std::mismatch(file.bytes.begin(), file.bytes.end(), controller.bytes.begin());
  if (in == file.bytes.end()) return std::nullopt;
  return BootFailure::Difference{file.address + static_cast<uint32_t>(in - file.bytes.begin()), *in, *out};
}

std::optional<BootFailure> Verify(const BootSequence& sequence) {
  for (const uint32_t address : DirtyRows(sequence.fileImage)) {
    const FlashRow* written = sequence.fileImage.FindRow(address);
    const FlashRow* readBack = sequence.deviceImage.FindRow(address);
    if (!readBack) return ErrorAt(sequence, BootError::kRowNotReadBack, address);
    if (written->Equals(*readBack)) continue;
    BootFailure failure = ErrorAt(sequence, BootError::kRowDiffers, address);
    failure.difference = FirstDifference(*written, *readBack);
    return failure;
  }
  return std::nullopt;
}

void OnRead(BootSequence& sequence, BootEffects& effects, uint32_t address, Bytes data) {
  if (sequence.verifyQueue.empty()) return;
  const uint32_t asked = sequence.verifyQueue.front();
  sequence.verifyQueue.pop_front();
  if (address != asked) {
    BootFailure failure = ErrorAt(sequence, BootError::kWrongAddress, asked);
    failure.received = address;
    return Fail(effects, failure);
  }
  for (size_t n = 0; n < data.size(); ++n)
    sequence.deviceImage.SetByte(address + static_cast<uint32_t>(n), data[n]);  // drops what is outside
  if (!sequence.verifyQueue.empty()) return ReadRow(effects, sequence.verifyQueue.front());
  if (const std::optional<BootFailure> failure = Verify(sequence)) return Fail(effects, *failure);
  sequence.state = BootState::kFinishing;
  Send(effects, MessageType::kFinished, {});
}

void OnFinished(BootSequence& sequence, BootEffects& effects) {
  sequence.state = BootState::kIdle;
  effects.emplace_back(PostProgress{BootProgress::kFinished, 0});
}

// ---- words for the log

std::string Text(const char* format, uint32_t number) {
  char text[96];
  std::snprintf(text, sizeof text, format, static_cast<unsigned>(number));
  return text;
}

// By state.
constexpr const char* kSteps[] = {"no step",     "entering the bootloader", "erasing page",
                                  "writing row", "reading back row",        "finishing"};

std::string ReasonOf(const BootFailure& failure) {
  if (failure.progress == BootProgress::kTimeout) return "no answer";
  switch (static_cast<BootError>(failure.detail)) {
    case BootError::kWrongAddress:
      return Text("0x%05X came instead", failure.received.value_or(0));
    case BootError::kRowNotReadBack:
      return "written, but not read back";
    case BootError::kRowMissing:
      return "not in the file";
    case BootError::kRowDiffers:
      break;
  }
  if (!failure.difference) return "differs";
  return Text("differs at 0x%05X", failure.difference->address) +
         Text(", file %02X", failure.difference->file) +
         Text(", controller %02X", failure.difference->controller);
}

std::optional<uint32_t> AddressInQuestion(const BootSequence& sequence) {
  const auto head = [](const std::deque<uint32_t>& queue) {
    return queue.empty() ? std::nullopt : std::optional(queue.front());
  };
  if (sequence.state == BootState::kErasing) return head(sequence.eraseQueue);
  if (sequence.state == BootState::kWriting) return head(sequence.writeQueue);
  if (sequence.state == BootState::kReading) return head(sequence.verifyQueue);
  return std::nullopt;
}

}  // namespace

uint32_t AddressIn(Bytes content) {
  const uint32_t word = content[1] + (uint32_t{content[2]} << 8) + (uint32_t{content[3]} << 16);
  return 2 * word;
}

std::string Describe(const BootFailure& failure) {
  std::string text = kSteps[static_cast<size_t>(failure.state)];
  if (failure.address) text += Text(" 0x%05X", *failure.address);
  return text + ": " + ReasonOf(failure);
}

BootEffects BootSequence::Start(const HexBytes& file) {
  fileImage.Reset();
  deviceImage.Reset();
  eraseQueue.clear();
  writeQueue.clear();
  verifyQueue.clear();
  state = BootState::kIdle;
  if (!LoadFileImage(fileImage, file)) return {};
  const std::vector<uint32_t> rows = DirtyRows(fileImage);
  if (rows.empty()) return {};
  const std::vector<uint32_t> pages = PagesOf(rows);
  eraseQueue.assign(pages.begin(), pages.end());
  writeQueue.assign(rows.begin(), rows.end());
  verifyQueue = writeQueue;
  state = BootState::kWaitBootloader;
  BootEffects effects;
  Send(effects, MessageType::kText, {kEnterBootloader.begin(), kEnterBootloader.end()});
  return effects;
}

uint32_t BootSequence::StepCount() const {
  constexpr size_t kFinish = 1;
  return static_cast<uint32_t>(eraseQueue.size() + writeQueue.size() + verifyQueue.size() + kFinish);
}

// The controller gets the first erase command twice, back to back, and answers it once.
BootEffects BootSequence::OnEnterBootloader() {
  if (state != BootState::kWaitBootloader) return {};
  BootEffects effects = CancelTimer();
  state = BootState::kErasing;
  ErasePage(effects, eraseQueue.front());
  effects.emplace_back(RepeatRequest{});
  return effects;
}

BootEffects BootSequence::OnResponse(uint32_t address, Bytes data) {
  BootEffects effects = CancelTimer();
  effects.emplace_back(PostProgress{BootProgress::kStepAnswered, 0});
  switch (state) {
    case BootState::kIdle:
      break;
    case BootState::kWaitBootloader:  // of an earlier update: the wait goes on, and must end
      effects.emplace_back(ArmStepTimer{});
      break;
    case BootState::kErasing:
      OnErased(*this, effects);
      break;
    case BootState::kWriting:
      OnWritten(*this, effects);
      break;
    case BootState::kReading:
      OnRead(*this, effects, address, data);
      break;
    case BootState::kFinishing:
      OnFinished(*this, effects);
      break;
  }
  return effects;
}

BootEffects BootSequence::OnTimeout() {
  BootFailure failure;
  failure.progress = BootProgress::kTimeout;
  failure.detail = static_cast<int32_t>(state);
  failure.state = state;
  failure.address = AddressInQuestion(*this);
  BootEffects effects = CancelTimer();
  Fail(effects, failure);
  return effects;
}

}  // namespace veltra
