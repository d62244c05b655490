// Any command line; every refused option is a piece of it.
#include <cstdlib>

#include "base/command_line.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const veltra::WideText line = veltra::Widen(veltra::TextOf({data, size}));
  for (const veltra::WideText& refused : veltra::ParseCommandLine(line).refused)
    if (line.find(refused) == veltra::WideText::npos) std::abort();
  return 0;
}
