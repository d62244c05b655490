// The language of macros: text to type, with keys and pauses in braces.
//
//   Hello{Enter}            types "Hello" and presses Enter
//   {Ctrl+A}{Ctrl+Shift+Left 3}   chords; a number repeats
//   {Pause 500}             waits half a second
//   {{ }}                   a brace itself
//   { } {"}                 a character that is no letter or digit, where it would be lost or mean something
//   else
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "base/text.h"

namespace macro {

using veltra::WideText;
using veltra::WideView;

constexpr int kMostRepeats = 99;
// All pauses of a macro together: while it runs the tool does nothing else.
constexpr int kLongestPauseMs = 5000;

struct MacroKey {
  uint8_t virtualKey = 0;
  bool isExtended = false;  // right of the main block, to Windows
};

struct MacroStep {
  enum class Kind { kText, kKeys, kPause };
  Kind kind = Kind::kText;
  WideText text;               // to type
  std::vector<MacroKey> keys;  // pressed in this order, released in the opposite one
  int count = 1;               // how often the last key is pressed meanwhile; of a pause: milliseconds
};

enum class Mistake {
  kNotClosed,     // "{" without "}"
  kNotOpened,     // "}" without "{"
  kUnknownKey,    // no key of that name
  kNotAModifier,  // a key before "+" that cannot be held with another
  kBadNumber,     // no number from 1 to 99, or to 5000 for a pause
  kTooLong,       // the pauses together are too long
};

// Where the text is wrong: characters from 0.
struct MacroMistake {
  Mistake mistake = Mistake::kNotClosed;
  size_t at = 0;
  size_t length = 0;
};

// A macro with a mistake has no steps: it is done whole or not at all.
struct ParsedMacro {
  std::vector<MacroStep> steps;
  std::optional<MacroMistake> mistake;
};

ParsedMacro ParseMacro(WideView text);

// The same macro on one line, without blanks at its ends and not in quotes: so a profile file keeps it as it
// is.
WideText FitForProfile(WideView text);

}  // namespace macro
