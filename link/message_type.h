// The kinds of messages on the controller's line, a pure core.
#pragma once

#include <cstdint>

namespace veltra {

// First byte of every message on the link, in both directions.
enum class MessageType : uint8_t {
  kReadMemory = 0x01,  // bootloader: read program memory; answer: the data
  kWriteRow = 0x02,    // bootloader: write a row; answer: acknowledge
  kErasePage = 0x03,   // bootloader: erase a page; answer: acknowledge
  kFinished = 0x08,    // bootloader: programming finished; answer: acknowledge
  kText = 0x0A,        // ASCII text without a terminating zero
  kReply = 0x0B,       // from the controller: answers the head of the queue
  kLogLine = 0x0C,     // from the controller: a line of its own log
};

}  // namespace veltra
