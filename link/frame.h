// Frames on the controller's line, a pure core: a two-byte header, the message bytes with escapes, a checksum
// and a trailer. Both directions look the same:
//
//   55 55  message bytes, each of 04 05 55 behind an escape byte 05  checksum, escaped likewise  04
//
// The unescaped message bytes and the checksum add up to 0 modulo 256.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace veltra {

constexpr uint8_t kFrameTrailer = 0x04;
constexpr uint8_t kFrameEscape = 0x05;
constexpr uint8_t kFrameHeader = 0x55;

// The frame of one message, header and trailer included.
std::vector<uint8_t> EncodeFrame(std::span<const uint8_t> message);

// Takes the line byte by byte. Costs a constant time for every byte, whatever comes, and allocates only when
// a frame is longer than every frame before it.
class FrameReceiver {
 public:
  enum class Outcome {
    kNothing,      // in the middle of a frame, or noise
    kMessage,      // a frame ended and its checksum is right: Message() is what it carried
    kBadChecksum,  // a frame ended and its checksum is wrong
  };

  Outcome OnByte(uint8_t byte) {
    if (escapePending_) {
      sum_ = static_cast<uint8_t>(sum_ - kFrameEscape + byte);
      buffer_[length_ - 1] = byte;
      escapePending_ = false;
      return Outcome::kNothing;
    }
    if (byte == kFrameHeader) {
      length_ = 0;
      sum_ = 0;
      return Outcome::kNothing;
    }
    if (byte == kFrameTrailer && length_ > 0) return EndFrame();
    if (length_ == buffer_.size()) Grow();
    buffer_[length_++] = byte;
    sum_ = static_cast<uint8_t>(sum_ + byte);
    escapePending_ = byte == kFrameEscape;
    return Outcome::kNothing;
  }

  // After Outcome::kMessage and until the next byte. May be empty.
  [[nodiscard]] std::span<const uint8_t> Message() const { return {buffer_.data(), length_}; }

 private:
  Outcome EndFrame();
  void Grow();

  std::vector<uint8_t> buffer_ = std::vector<uint8_t>(512);
  size_t length_ = 0;           // bytes of the frame so far, unescaped, the checksum included
  uint8_t sum_ = 0;             // of these bytes
  bool escapePending_ = false;  // the last of them is an escape byte: the next byte takes its place as data
};

}  // namespace veltra
