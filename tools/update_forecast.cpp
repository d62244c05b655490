#include "tools/update_forecast.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <utility>
#include <variant>

#include "firmware/boot_sequence.h"
#include "firmware/flash_image.h"
#include "link/frame.h"

namespace veltra {
namespace {

// ---- how long it takes

constexpr double kBitsPerByte = 10;       // start bit, 8 data bits, stop bit
constexpr double kPausePerFrame = 0.005;  // the tool's, after the first byte of each of its frames

struct LineUse {
  double bytes = 0;  // in both directions
  double framesOfTool = 0;

  void Command(const std::vector<uint8_t>& message) {
    bytes += static_cast<double>(EncodeFrame(message).size());
    ++framesOfTool;
  }
  void Answer(const std::vector<uint8_t>& message) {
    bytes += static_cast<double>(EncodeFrame(message).size());
  }
  [[nodiscard]] double Seconds() const {
    return bytes * kBitsPerByte / kBitsPerSecond + framesOfTool * kPausePerFrame;
  }
};

std::vector<uint8_t> MessageOf(MessageType type, std::span<const uint8_t> content) {
  std::vector<uint8_t> message;
  message.reserve(content.size() + 1);
  message.push_back(static_cast<uint8_t>(type));
  message.insert(message.end(), content.begin(), content.end());
  return message;
}

// What the controller does with a request, as shortly as can be, and what the update makes of that.
BootEffects Answer(BootSequence& update, const SendRequest& request, LineUse& use) {
  if (request.type == MessageType::kText) {
    use.Answer(MessageOf(MessageType::kReply, std::array<uint8_t, 1>{}));
    return update.OnEnterBootloader();
  }
  if (request.type != MessageType::kReadMemory) {
    use.Answer(MessageOf(request.type, {}));
    return update.OnResponse(0, {});
  }
  const FlashRow& row = *update.fileImage.FindRow(update.verifyQueue.front());
  std::vector<uint8_t> content = request.content;  // the answer says again which row it is
  content.insert(content.end(), row.bytes.begin(), row.bytes.end());
  use.Answer(MessageOf(request.type, content));
  return update.OnResponse(row.address, row.bytes);
}

// The frames of the update that begins with these effects, every step of it answered at once.
LineUse LineUseOf(BootSequence& update, BootEffects effects) {
  LineUse use;
  SendRequest last{};
  for (bool sent = true; sent;) {
    sent = false;
    for (const BootEffect& effect : effects) {
      if (const auto* request = std::get_if<SendRequest>(&effect)) last = *request;
      const bool isRepeated = std::holds_alternative<RepeatRequest>(effect);
      if (!isRepeated && !std::holds_alternative<SendRequest>(effect)) continue;
      use.Command(MessageOf(last.type, last.content));
      sent = true;
    }
    if (sent) effects = Answer(update, last, use);
  }
  return use;
}

// ---- what it does to the flash

constexpr uint32_t kInstructionSize = 4;

// The parts of the runs that an update leaves out.
std::vector<Range> OutsideWindow(const HexBytes& bytes) {
  std::vector<Range> outside;
  for (size_t n = 0; n < bytes.RunCount(); ++n) {
    const HexRun run = bytes.Run(n);
    uint64_t begin = run.address;
    const uint64_t end = begin + run.bytes.size();
    for (const AddressRange& inside : kProgrammableWindow) {
      if (begin < inside.begin) outside.push_back({begin, std::min<uint64_t>(end, inside.begin)});
      begin = std::max<uint64_t>(begin, std::min<uint64_t>(end, inside.end));
      if (begin == end) break;
    }
    if (begin < end) outside.push_back({begin, end});
  }
  return outside;
}

void AddRow(std::vector<Range>& ranges, uint32_t row) {
  if (!ranges.empty() && ranges.back().end == row)
    ranges.back().end += kFlashRowSize;
  else
    ranges.push_back({row, uint64_t{row} + kFlashRowSize});
}

uint32_t AddToChecksum(uint32_t checksum, std::span<const uint8_t> bytes) {
  constexpr uint32_t kPolynomial = 0xEDB88320;
  checksum = ~checksum;
  for (const uint8_t byte : bytes) {
    checksum ^= byte;
    for (int bit = 0; bit < 8; ++bit) checksum = (checksum >> 1) ^ ((checksum & 1) != 0 ? kPolynomial : 0);
  }
  return ~checksum;
}

void NoteRow(UpdateForecast& forecast, const FlashRow& row) {
  if (!row.dirty) return AddRow(forecast.erasedOnly, row.address);
  AddRow(forecast.written, row.address);
  std::array<uint8_t, kFlashRowSize> readBack = row.bytes;
  for (uint32_t n = kInstructionSize - 1; n < kFlashRowSize; n += kInstructionSize)
    if (const uint8_t byte = std::exchange(readBack[n], uint8_t{0}))
      forecast.unverifiable.push_back({row.address + n, byte});
  forecast.checksum = AddToChecksum(forecast.checksum, readBack);
}

}  // namespace

UpdateForecast Foresee(const HexBytes& bytes) {
  UpdateForecast forecast;
  forecast.outside = OutsideWindow(bytes);
  for (const Range& range : forecast.outside) forecast.outsideBytes += range.end - range.begin;
  BootSequence update;
  const BootEffects begin = update.Start(bytes);
  if (begin.empty()) return forecast;
  forecast.starts = true;
  forecast.pages = update.eraseQueue.size();
  forecast.rows = update.writeQueue.size();
  for (const uint32_t page : update.eraseQueue) {
    for (uint32_t row = page; row < page + kFlashPageSize; row += kFlashRowSize)
      NoteRow(forecast, *update.fileImage.FindRow(row));
    forecast.erasesReservedRow |= page <= kReservedFlashRow && kReservedFlashRow < page + kFlashPageSize;
  }
  const LineUse use = LineUseOf(update, begin);
  forecast.bytesOnLine = use.bytes;
  forecast.seconds = use.Seconds();
  return forecast;
}

}  // namespace veltra
