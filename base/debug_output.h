// Trace texts for a debugger that is attached.
#pragma once

#include "base/text.h"

namespace veltra {

void WriteDebugText(const WideText& text);

template <class... Arguments>
void Trace(WideView format, const Arguments&... arguments) {
  WriteDebugText(FormatText(format, arguments...));
}

}  // namespace veltra
