#include "base/debug_output.h"

#include <windows.h>

namespace veltra {

void WriteDebugText(const WideText& text) {
  OutputDebugStringW(text.c_str());
}

}  // namespace veltra
