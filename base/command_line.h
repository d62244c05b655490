// The command line of the tool, a pure core.
#pragma once

#include <vector>

#include "base/text.h"

namespace veltra {

struct CommandLine {
  bool help = false;              // "-?", "--help": parsing stopped there
  bool silent = false;            // "-s", "-silent": open no dialog at the end of start-up
  bool openOptions = false;       // "-v5": the options dialog instead of the power meter
  std::vector<WideText> refused;  // options with a value attached ("-s=1"), as they were written
};

// `commandLine` begins with the program, which is skipped. Arguments end at white space; one that begins with
// a double quote ends at the next double quote before white space or the end. Options are matched without
// regard to case, "/" counts as the first "-", and the beginning of exactly one spelling with the same number
// of dashes (one letter at least) counts as that spelling. What is no option is ignored.
CommandLine ParseCommandLine(WideView commandLine);

}  // namespace veltra
