// Everything that happens on a simulated tablet, in one order: frames of both ends of the line, the tool's
// effects on the machine, and what a person or a script did. It is what the console prints and what
// expectations look at.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/tablet.h"
#include "simulator/words.h"

namespace simulator {

struct TimelineEntry {
  Duration at{0};
  std::string who;   // "controller ->", "tool ->", "effect", ">"
  std::string text;  // "Sw1Make", "mouse left down"
  // What expectations compare: with `who` for what crosses the line, alone otherwise.
  [[nodiscard]] std::string Line() const;
};

class Timeline {
 public:
  explicit Timeline(std::ostream& out) : out_(out) {}

  // Follows the tablet, which must not outlive this object.
  void Follow(SimulatedTablet& tablet);
  void Add(TimelineEntry entry, bool print = true);

  // Shows the bytes of frames below them.
  void ShowBytes(bool show) { showBytes_ = show; }
  // Shows every effect, not only what a person would notice.
  void ShowAll(bool show) { showAll_ = show; }
  // Prints nothing at all.
  void Silence() { silent_ = true; }

  // Expectations look at what came after the last entry that one was met by. `pattern` is a part of a line,
  // or a whole line when `whole`. With a time the entry must have happened then, to the millisecond.
  Problem Expect(std::string_view pattern, bool whole, std::optional<Duration> at);
  Problem ExpectNone(std::string_view pattern, bool whole) const;
  // Expectations look from here on.
  void SkipToNow() { next_ = entries_.size(); }

 private:
  [[nodiscard]] std::string Recent() const;

  std::ostream& out_;
  std::vector<TimelineEntry> entries_;
  size_t next_ = 0;  // the first entry that expectations look at
  bool showBytes_ = false;
  bool showAll_ = false;
  bool silent_ = false;
};

}  // namespace simulator
