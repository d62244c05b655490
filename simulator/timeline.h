// Everything that happens in a story, in one order: frames of both ends of the line, what the tool does to
// the machine, and what a person or a script did. It is what the console prints and what expectations look
// at.
#pragma once

#include <functional>
#include <iosfwd>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/world.h"

namespace simulator {

class Timeline {
 public:
  explicit Timeline(std::ostream& out) : out_(out) {}

  // Follows the world until told otherwise, and before this object is gone.
  void Follow(World& world);
  static void StopFollowing(World& world);
  void Add(TimelineEntry entry, bool noticed = true);

  // Everything so far.
  [[nodiscard]] const std::vector<TimelineEntry>& Entries() const { return entries_; }

  // Shows the bytes of frames below them.
  void ShowBytes(bool show) { showBytes_ = show; }
  // Shows every effect, not only what a person would notice.
  void ShowAll(bool show) { showAll_ = show; }
  // Tells kinds of entries apart as a terminal does.
  void UseColours(bool use) { inColour_ = use; }
  // Called before each entry that is printed.
  void OnPrint(std::function<void()> listener) { onPrint_ = std::move(listener); }
  // Prints nothing at all.
  void Silence() { silent_ = true; }

  // Entries of different sources, the line or one `who`, have no exact order: one may stand up to that long
  // after its place.
  void AllowDisorder(Duration most) { disorder_ = most; }

  // Expectations look at what came after the last entry that one was met by. `pattern` is a part of a line,
  // or a whole line when `whole`. With a time the entry must have happened then, to the millisecond.
  Problem Expect(std::string_view pattern, bool whole, std::optional<Duration> at);
  Problem ExpectNone(std::string_view pattern, bool whole) const;
  // The line is the next that a person would notice, commands left aside; without a line: there is none.
  Problem ExpectNext(std::optional<std::string_view> line);
  // Expectations look from here on.
  void SkipToNow();

 private:
  [[nodiscard]] bool IsLate(size_t entry) const;
  [[nodiscard]] std::string Recent() const;
  void Print(const TimelineEntry& entry);

  std::ostream& out_;
  std::vector<TimelineEntry> entries_;
  std::vector<bool> noticed_;  // of each entry
  size_t next_ = 0;            // the first entry that expectations look at
  Duration disorder_{0};
  std::map<std::string, size_t, std::less<>> nextOf_;  // and of one source
  std::function<void()> onPrint_;
  bool showBytes_ = false;
  bool showAll_ = false;
  bool inColour_ = false;
  bool silent_ = false;
};

}  // namespace simulator
