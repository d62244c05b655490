#include "app/pic_receiver.h"

#include "app/app_state.h"
#include "app/pic_messages.h"
#include "link/send_queue.h"

namespace veltra {
namespace {

constexpr uint32_t kBadChecksumsUntilClear = 3;

// Handling a message may run a message loop of its own (a box, a send to another program) in which the next
// bytes arrive, so the message is copied out of the receiver. The copy's memory is kept for the next one.
void DeliverMessage(LinkReceiver& receiver) {
  std::vector<uint8_t> message = std::move(receiver.spare);
  message.assign(receiver.frames.Message().begin(), receiver.frames.Message().end());
  HandlePicMessage(message);
  receiver.spare = std::move(message);
}

void OnBadChecksum(LinkReceiver& receiver) {
  if (++receiver.badChecksumCount < kBadChecksumsUntilClear) {
    SendFrame(
        BytesOf("\x0A"
                "Resend"));  // a text message, past the queue
    return;
  }
  receiver.badChecksumCount = 0;
  ClearPicQueue();
}

}  // namespace

void OnPicByte(uint8_t byte) {
  LinkReceiver& receiver = Link().receiver;
  switch (receiver.frames.OnByte(byte)) {
    case FrameReceiver::Outcome::kNothing:
      break;
    case FrameReceiver::Outcome::kMessage:
      DeliverMessage(receiver);
      break;
    case FrameReceiver::Outcome::kBadChecksum:
      OnBadChecksum(receiver);
      break;
  }
}

}  // namespace veltra
