#include "simulator/wire.h"

#include <algorithm>
#include <cstdio>
#include <numeric>

#include "simulator/bootloader.h"

namespace simulator {
namespace {

constexpr uint8_t kHeader = 0x55;
constexpr uint8_t kEscape = 0x05;
constexpr uint8_t kTrailer = 0x04;

bool IsSpecial(uint8_t byte) {
  return byte == kHeader || byte == kEscape || byte == kTrailer;
}

uint8_t Sum(std::span<const uint8_t> bytes) {
  return static_cast<uint8_t>(std::accumulate(bytes.begin(), bytes.end(), 0U));
}

std::string Hex(uint8_t byte) {
  char text[3];
  std::snprintf(text, sizeof text, "%02X", byte);
  return text;
}

bool IsPrintable(std::span<const uint8_t> bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte >= 0x20 && byte < 0x7F; });
}

std::string TextOrBytes(std::span<const uint8_t> bytes) {
  return IsPrintable(bytes) ? std::string(bytes.begin(), bytes.end()) : DescribeBytes(bytes);
}

constexpr size_t kAddressSize = 4;  // a count and a word address

// " 0x01800", the address as it stands in a HEX file.
std::string AddressText(std::span<const uint8_t> message) {
  if (message.size() < 1 + kAddressSize) return " without an address";
  char text[16];
  std::snprintf(text, sizeof text, " 0x%05X", static_cast<unsigned>(AddressIn(message)));
  return text;
}

}  // namespace

std::vector<uint8_t> MakeMessage(MessageType type, std::string_view content) {
  std::vector<uint8_t> message(1 + content.size(), static_cast<uint8_t>(type));
  std::copy(content.begin(), content.end(), message.begin() + 1);
  return message;
}

std::vector<uint8_t> EncodeFrame(std::span<const uint8_t> message) {
  std::vector<uint8_t> body(message.begin(), message.end());
  body.push_back(static_cast<uint8_t>(-Sum(message)));
  std::vector<uint8_t> frame = {kHeader, kHeader};
  for (const uint8_t byte : body) {
    if (IsSpecial(byte)) frame.push_back(kEscape);
    frame.push_back(byte);
  }
  frame.push_back(kTrailer);
  return frame;
}

std::string DescribeBytes(std::span<const uint8_t> bytes) {
  std::string text;
  for (const uint8_t byte : bytes) text += (text.empty() ? "" : " ") + Hex(byte);
  return text;
}

std::string DescribeMessage(std::span<const uint8_t> message) {
  if (message.empty()) return "nothing";
  const std::span<const uint8_t> content = message.subspan(1);
  switch (static_cast<MessageType>(message.front())) {
    case MessageType::kText:
      return TextOrBytes(content);
    case MessageType::kReply:
      return content.empty() ? "reply without content" : "reply " + TextOrBytes(content);
    case MessageType::kLogLine:
      return "log " + TextOrBytes(content);
    case MessageType::kErasePage:
      return content.empty() ? "erased" : "erase page" + AddressText(message);
    case MessageType::kWriteRow:
      return content.empty() ? "written" : "write row" + AddressText(message);
    case MessageType::kReadMemory:
      return content.size() <= kAddressSize ? "read row" + AddressText(message)
                                            : "row" + AddressText(message) + " with " +
                                                  std::to_string(content.size() - kAddressSize) + " bytes";
    case MessageType::kFinished:
      return "finish";
  }
  return "type " + Hex(message.front()) + ": " + DescribeBytes(content);
}

std::optional<WireEvent> FrameReader::Take(uint8_t byte) {
  wire_.push_back(byte);
  switch (state_) {
    case State::kOutside:
      if (byte != kHeader) return Reject("byte " + Hex(byte) + " outside a frame");
      state_ = State::kHalfHeader;
      return std::nullopt;
    case State::kHalfHeader:
      if (byte != kHeader) return Reject("one header byte instead of two");
      state_ = State::kInside;
      return std::nullopt;
    case State::kInside:
      if (byte == kTrailer) return Finish();
      if (byte == kHeader) {
        WireEvent event = Reject("a new header inside a frame");
        state_ = State::kHalfHeader;
        wire_ = {kHeader};
        return event;
      }
      if (byte == kEscape)
        state_ = State::kEscaped;
      else
        body_.push_back(byte);
      return std::nullopt;
    case State::kEscaped:
      if (!IsSpecial(byte)) return Reject("byte " + Hex(byte) + " needs no escape");
      body_.push_back(byte);
      state_ = State::kInside;
      return std::nullopt;
  }
  return std::nullopt;
}

WireEvent FrameReader::Finish() {
  if (body_.size() < 2) return Reject("a frame without a message");
  if (Sum(body_) != 0) return Reject("wrong checksum");
  body_.pop_back();
  WireEvent event{std::move(body_), std::move(wire_), {}};
  *this = {};
  return event;
}

WireEvent FrameReader::Reject(std::string fault) {
  WireEvent event{{}, std::move(wire_), std::move(fault)};
  *this = {};
  return event;
}

}  // namespace simulator
