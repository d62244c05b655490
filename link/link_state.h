// The state of the controller link: records.
#pragma once

#include <windows.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <string_view>
#include <vector>

#include "base/record.h"
#include "base/text.h"
#include "link/device_identity.h"
#include "link/frame.h"
#include "link/message_type.h"
#include "link/serial_input.h"

namespace veltra {

struct PicRequest {
  HWND replyTarget = nullptr;  // the window that asked; null: the tool itself
  std::vector<uint8_t> bytes;  // type first, then the content
  bool transmitted = false;    // at least once
  DWORD transmittedAt = 0;     // the last time, as GetTickCount tells it
  DWORD unknownUntil = 0;      // no answer is older: the first time
  bool wentAstray = false;     // the port was closed then, or has been since

  [[nodiscard]] std::string_view Text() const { return TextOf(bytes).substr(1); }
};

// The head was transmitted and waits for its answer, every other request waits its turn.
using PicQueue = std::deque<PicRequest>;

struct LinkReceiver {
  FrameReceiver frames;
  uint32_t badChecksumCount = 0;  // since it last reached 3; good frames do not reset it
  std::vector<uint8_t> spare;     // memory for the next message
};

struct LinkState {
  int32_t PicPortNumber = 2;
  std::shared_ptr<VeltraFramework::CSerialInput> picPort;  // null while the port is closed
  uint32_t openings = 0;                                   // of the port so far
  bool retryIsDue = false;                                 // the port will be tried once more
  void (*whenLineIsGone)() = nullptr;                      // releases what the switches hold down
  LinkReceiver receiver;
  PicQueue picQueue;
  bool queueIsReserved = false;  // a firmware update has it to itself
  PicQueue waitingAside;         // what others asked meanwhile
  std::vector<uint8_t> irCode;   // the last infrared recording
  DeviceIdentity identity;
};

inline LinkState& Link() {
  return RecordOf<LinkState>();
}

}  // namespace veltra
