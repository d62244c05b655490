#include "link/frame.h"

#include <numeric>

namespace veltra {
namespace {

constexpr size_t kLongestFrame = size_t{1} << 20;  // bytes, unescaped, the checksum included

uint8_t AddBytes(uint8_t a, uint8_t b) {
  return static_cast<uint8_t>(a + b);
}

void AppendEscaped(std::vector<uint8_t>& frame, uint8_t byte) {
  if (byte == kFrameTrailer || byte == kFrameEscape || byte == kFrameHeader) frame.push_back(kFrameEscape);
  frame.push_back(byte);
}

}  // namespace

std::vector<uint8_t> EncodeFrame(std::span<const uint8_t> message) {
  std::vector<uint8_t> frame;
  frame.reserve(2 * message.size() + 5);
  frame.assign({kFrameHeader, kFrameHeader});
  uint8_t sum = 0;
  for (const uint8_t byte : message) {
    sum = static_cast<uint8_t>(sum + byte);
    AppendEscaped(frame, byte);
  }
  AppendEscaped(frame, static_cast<uint8_t>(-sum));
  frame.push_back(kFrameTrailer);
  return frame;
}

// The message stays in the buffer until the next header byte. When it ends in 05, that byte counts as a
// pending escape from here on: the first header byte of the next frame takes its place, the second one
// empties the buffer.
FrameReceiver::Outcome FrameReceiver::EndFrame() {
  sum_ = std::accumulate(buffer_.begin() + static_cast<ptrdiff_t>(summedLength_),
                         buffer_.begin() + static_cast<ptrdiff_t>(length_), sum_, AddBytes);
  const bool good = sum_ == 0 && length_ < kLongestFrame;
  if (good) {
    --length_;
    sum_ = static_cast<uint8_t>(sum_ - buffer_[length_]);
  }
  summedLength_ = length_;
  escapePending_ = length_ > 0 && buffer_[length_ - 1] == kFrameEscape;
  return good ? Outcome::kMessage : Outcome::kBadChecksum;
}

// What is too long already only keeps its end.
void FrameReceiver::Grow() {
  if (buffer_.size() < kLongestFrame)
    buffer_.resize(2 * buffer_.size());
  else
    --length_;
}

}  // namespace veltra
