// The controller's side of the line: how messages become bytes and bytes become messages. Written from the
// protocol alone and stricter than the tool's own receiver, so that each end checks the other.
//
//   55 55  type  content  checksum  04      04, 05 and 55 between header and trailer stand after an escape
//   byte 05
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

// The first byte of a message.
enum class MessageType : uint8_t {
  kReadMemory = 0x01,  // these four: bootloader commands, and their answers
  kWriteRow = 0x02,
  kErasePage = 0x03,
  kFinished = 0x08,
  kText = 0x0A,     // both ways: 8-bit text without a terminator
  kReply = 0x0B,    // from the controller: answers the request before it
  kLogLine = 0x0C,  // from the controller: a line of its own log
};

std::vector<uint8_t> MakeMessage(MessageType type, std::string_view content);
std::vector<uint8_t> EncodeFrame(std::span<const uint8_t> message);

// The message as a person reads it: "Sw1Make", "reply OK", "reply 01 04", "log low power", "erase page
// 0x01800", "row 0x01800: FF FF ...", "type 07: 00 40".
std::string DescribeMessage(std::span<const uint8_t> message);
// Bytes in hexadecimal with blanks between: "55 55 0A".
std::string DescribeBytes(std::span<const uint8_t> bytes);

// What the reader found on the line.
struct WireEvent {
  std::vector<uint8_t> message;  // type byte first, checksum taken off; empty when the frame is bad
  std::vector<uint8_t> wire;     // the bytes as they came
  std::string fault;             // what is wrong with the frame; empty for a good one
};

class FrameReader {
 public:
  // Returns an event at the end of every frame and at every fault.
  std::optional<WireEvent> Take(uint8_t byte);

 private:
  enum class State { kOutside, kHalfHeader, kInside, kEscaped };
  WireEvent Finish();
  WireEvent Reject(std::string fault);

  State state_ = State::kOutside;
  std::vector<uint8_t> body_;  // unescaped, checksum included
  std::vector<uint8_t> wire_;
};

}  // namespace simulator
