// Programs that the user's actions start.
#pragma once

#include <windows.h>

#include "base/text.h"

namespace veltra {

// While one lives, a program that is started gets the error mode that Windows gives, not that of the tool, in
// which a damaged library raises no box.
class PlainErrorMode {
 public:
  PlainErrorMode() : before_(SetErrorMode(0)) {}
  ~PlainErrorMode() { SetErrorMode(before_); }
  PlainErrorMode(const PlainErrorMode&) = delete;
  PlainErrorMode& operator=(const PlainErrorMode&) = delete;

 private:
  UINT before_;
};

// Whether this is a 32-bit program on a 64-bit Windows.
bool IsWow64();

// Opens the path through the shell, in the folder that the path names. A 32-bit tool on a 64-bit Windows
// means the real system folder, as the user does.
void StartProgram(const WideText& path);

}  // namespace veltra
