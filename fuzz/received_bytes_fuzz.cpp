// Any bytes on the line: the receiver stays sound, and a message put after them in a fresh frame arrives.
#include <algorithm>
#include <cstdlib>

#include "link/frame.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  veltra::FrameReceiver receiver;
  for (size_t n = 0; n < size; ++n) receiver.OnByte(data[n]);

  const std::vector<uint8_t> message(data, data + std::min<size_t>(size, 64));
  bool arrived = false;
  for (const uint8_t byte : veltra::EncodeFrame(message))
    if (receiver.OnByte(byte) == veltra::FrameReceiver::Outcome::kMessage)
      arrived =
          std::equal(message.begin(), message.end(), receiver.Message().begin(), receiver.Message().end());
  if (!arrived) std::abort();
  return 0;
}
