// Frames on the controller's line, a pure core: a two-byte header, the message bytes with escapes, a checksum
// and a trailer. Both directions look the same:
//
//   55 55  message bytes, each of 04 05 55 after an escape byte 05  checksum, escaped likewise  04
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

// Takes the line byte by byte. Costs a constant time for every byte on average, whatever comes, and allocates
// only when a frame is longer than every frame before it. A frame of 1 MiB and more is a bad one, and its
// bytes past that are not kept.
class FrameReceiver {
 public:
  enum class Outcome {
    kNothing,      // in the middle of a frame, or noise
    kMessage,      // a frame ended and its checksum is right: Message() is what it carried
    kBadChecksum,  // a frame ended and its checksum is wrong, or it was too long
  };

  Outcome OnByte(uint8_t byte) {
    if (escapePending_) {
      TakeEscaped(byte);
      return Outcome::kNothing;
    }
    if (byte == kFrameHeader) {
      length_ = 0;
      summedLength_ = 0;
      sum_ = 0;
      return Outcome::kNothing;
    }
    if (byte == kFrameTrailer && length_ > 0) return EndFrame();
    if (byte == kFrameEscape) escapePending_ = true;
    if (length_ == buffer_.size()) Grow();
    buffer_[length_++] = static_cast<char8_t>(byte);
    return Outcome::kNothing;
  }

  // After Outcome::kMessage and until the next byte. May be empty.
  [[nodiscard]] std::span<const uint8_t> Message() const {
    return {reinterpret_cast<const uint8_t*>(buffer_.data()), length_};
  }

 private:
  void TakeEscaped(uint8_t byte) {
    if (summedLength_ == length_) sum_ = static_cast<uint8_t>(sum_ - kFrameEscape + byte);
    buffer_[length_ - 1] = static_cast<char8_t>(byte);
    escapePending_ = false;
  }
  Outcome EndFrame();
  void Grow();

  // char8_t aliases nothing else, so that a loop over OnByte keeps the members in registers.
  std::vector<char8_t> buffer_ = std::vector<char8_t>(512);
  size_t length_ = 0;        // bytes of the frame so far, unescaped, the checksum included
  size_t summedLength_ = 0;  // of these, how many are in the sum already
  uint8_t sum_ = 0;
  bool escapePending_ = false;  // the last byte is an escape byte: the next one takes its place as data
};

}  // namespace veltra
