// Any message of the controller, in good frames: the input is cut at its line feeds into messages.
#include <string_view>
#include <vector>

#include "fuzz/tablet_for_fuzzing.h"
#include "link/frame.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  while (!rest.empty()) {
    const std::string_view message = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(rest.size(), message.size() + 1));
    fuzz::Tablet().Pic().SendRaw(
        veltra::EncodeFrame({reinterpret_cast<const uint8_t*>(message.data()), message.size()}));
  }
  fuzz::Tablet().Advance(std::chrono::milliseconds(100));
  fuzz::ExpectAlive();
  return 0;
}
