// Any macro: a mistake lies within it, and what is fitted for a profile does as much.
#include <cstdlib>

#include "plugins/macro/macro_text.h"

namespace {

// How much is done, for a rough comparison.
size_t Weigh(const macro::ParsedMacro& macro) {
  size_t weight = 0;
  for (const macro::MacroStep& step : macro.steps)
    weight += step.text.size() + step.keys.size() * 3 + static_cast<size_t>(step.count);
  return weight;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const veltra::WideText text = veltra::Widen(veltra::TextOf({data, size}));
  const macro::ParsedMacro parsed = macro::ParseMacro(text);
  if (parsed.mistake && parsed.mistake->at + parsed.mistake->length > text.size()) std::abort();
  if (parsed.mistake) return 0;
  const veltra::WideText fitted = macro::FitForProfile(text);
  const macro::ParsedMacro again = macro::ParseMacro(fitted);
  if (again.mistake || Weigh(again) != Weigh(parsed)) std::abort();
  if (!fitted.empty() && (fitted.front() == ' ' || fitted.back() == ' ')) std::abort();
  return 0;
}
