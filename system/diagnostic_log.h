// The diagnostic log: one file and one older generation, opened and closed for every line.
//
//   k19 140509 3 Resume . . . . . .  ***    Device resuming
//
// is month (a to l), day, hour minute second, tenth, the tag over a 19-character filler, a blank and the
// message (its first 64 Ki characters), one byte for each character (the low 8 bits), ended by CR LF. A line
// that cannot be written is lost; nobody is told.
#pragma once

#include "base/text.h"

namespace veltra {

class DiagnosticLog {
 public:
  // The three files lie in `folder` (with trailing backslash): "DevLog.txt", "DevLog_pt2.txt" and
  // "logon.txt".
  explicit DiagnosticLog(const WideText& folder);

  // An ordinary line.
  void Write(const WideText& tag, const WideText& message);
  // An error line, marked ">_<".
  void WriteError(const WideText& tag, const WideText& message);
  // A detail line, marked "***"; only while the marker file "logon.txt" can be opened for reading and
  // writing.
  void WriteDetail(const WideText& tag, const WideText& message);

 private:
  bool Enabled = true;
  WideText LogPath;
  WideText PreviousPath;
  WideText MarkerPath;
};

}  // namespace veltra
