// The state of the controller link: records.
#pragma once

#include <windows.h>

#include <cstdint>
#include <deque>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "link/frame.h"

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

struct PicRequest {
  HWND replyTarget = nullptr;  // the window that asked; null: the tool itself
  std::vector<uint8_t> bytes;  // type first, then the content
  bool transmitted = false;    // at least once

  [[nodiscard]] std::string_view Text() const { return TextOf(bytes).substr(1); }
};

// The head was transmitted and waits for its answer, every other request waits its turn.
using PicQueue = std::deque<PicRequest>;

struct LinkReceiver {
  FrameReceiver frames;
  uint32_t badChecksumCount = 0;  // since it last reached 3; good frames do not reset it
  std::vector<uint8_t> spare;     // memory for the next message
};

}  // namespace veltra
