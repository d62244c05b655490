// Any copied data from another program: the first byte chooses the tag, the rest is the payload.
#include "fuzz/tablet_for_fuzzing.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  constexpr uint64_t kTags[] = {0,     1,     2,     3,     4,     12343, 12344,       12345,
                                12346, 12347, 12348, 12349, 12350, 12351, ~uint64_t{0}};
  fuzz::Tablet().SendData(nullptr, kTags[data[0] % std::size(kTags)], {data + 1, size - 1});
  fuzz::Tablet().Advance(std::chrono::milliseconds(100));
  fuzz::ExpectAlive();
  return 0;
}
