// Any text as a resource script.
#include <optional>
#include <string>
#include <string_view>

#include "pal/resource_script.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  pal::CompileResourceScript(text,
                             [](const std::string&) { return std::optional<std::string>("#define X 1\n"); });
  return 0;
}
