// The encoding of a profile file. Windows' private-profile functions keep that of the file: UTF-16 when it
// begins with a byte-order mark, else the 8-bit code page, in which other letters are lost.
#pragma once

#include "base/text.h"

namespace veltra {

// Whether the 8-bit code page has every character of the text.
bool FitsCodePage(WideView text);

// Makes the file UTF-16, with what it says now; an empty one when it is missing. False when that fails: then
// it is as it was.
bool MakeProfileUtf16(const WideText& path);

}  // namespace veltra
