// The steps of a firmware update, a pure core: what the controller answers goes in, what is to be done comes
// out as data.
//
//   enter the bootloader - erase every page - write every row - read every row - compare - finish
//
// Each step waits for its answer, for five seconds at most. Nothing is tried again: a failure leaves the
// sequence where it stands, and the next Start begins afresh.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/text.h"
#include "firmware/flash_image.h"
#include "link/message_type.h"

namespace veltra {

enum class BootState : int32_t {  // the number is shown to the user when a step is not answered
  kIdle = 0,
  kWaitBootloader = 1,
  kErasing = 2,
  kWriting = 3,
  kReading = 4,
  kFinishing = 5,
};

enum class BootProgress : uint32_t {
  kFinished = 0,      // the update has succeeded
  kTimeout = 1,       // a step was not answered; its detail is the state
  kError = 2,         // its detail is a BootError
  kStepAnswered = 3,  // the bar goes on by one
};

enum class BootError : int32_t {
  kWrongAddress = -101,    // a read-back carries another address than the row asked for
  kRowNotReadBack = -102,  // a row that was written is missing among those read back
  kRowDiffers = -103,      // a row that was written reads back with other bytes
  kRowMissing = -104,      // a row to write is missing from the file's image
};

// Where an update failed, for the log.
struct BootFailure {
  struct Difference {
    uint32_t address;
    uint8_t file;
    uint8_t controller;
    bool operator==(const Difference&) const = default;
  };
  BootProgress progress = BootProgress::kTimeout;
  int32_t detail = 0;  // goes with the progress
  BootState state = BootState::kIdle;
  std::optional<uint32_t> address;   // image address of the row, or page, in question
  std::optional<uint32_t> received;  // the address that came instead
  std::optional<Difference> difference;
  bool operator==(const BootFailure&) const = default;
};

// "reading back row 0x01900: differs at 0x01934, file 3F, controller FF"
std::string Describe(const BootFailure& failure);

// What of a command or a read-back, type left out, says where: a count and a word address.
constexpr size_t kAddressedLength = 4;
// The image address of such a content, which is at least as long.
uint32_t AddressIn(Bytes content);

// ---- what is to be done, in this order

struct SendRequest {  // to the controller, through its queue
  MessageType type;
  std::vector<uint8_t> content;
  bool operator==(const SendRequest&) const = default;
};
struct RepeatRequest {  // the one just sent goes out once more, behind the first
  bool operator==(const RepeatRequest&) const = default;
};
struct ArmStepTimer {
  bool operator==(const ArmStepTimer&) const = default;
};
struct CancelStepTimer {
  bool operator==(const CancelStepTimer&) const = default;
};
struct PostProgress {  // to the person who waits
  BootProgress progress;
  int32_t detail;
  bool operator==(const PostProgress&) const = default;
};
struct LogFailure {
  BootFailure failure;
  bool operator==(const LogFailure&) const = default;
};
using BootEffect =
    std::variant<SendRequest, RepeatRequest, ArmStepTimer, CancelStepTimer, PostProgress, LogFailure>;
using BootEffects = std::vector<BootEffect>;

struct BootSequence {
  // Empty when the file has no byte that can be programmed: then there is nothing to do and the state is
  // idle.
  BootEffects Start(const HexBytes& file);
  // The number of answers that are expected after the first: what PostProgress counts.
  [[nodiscard]] uint32_t StepCount() const;

  BootEffects OnEnterBootloader();
  // `address` and `data` of an answer to a read, 0 and nothing of any other.
  BootEffects OnResponse(uint32_t address, Bytes data);
  BootEffects OnTimeout();

  FlashImage fileImage;              // the new firmware
  FlashImage deviceImage;            // what the controller returned
  std::deque<uint32_t> eraseQueue;   // pages, image addresses
  std::deque<uint32_t> writeQueue;   // rows
  std::deque<uint32_t> verifyQueue;  // rows
  BootState state = BootState::kIdle;
};

}  // namespace veltra
