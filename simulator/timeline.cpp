#include "simulator/timeline.h"

#include <iomanip>
#include <ostream>

namespace simulator {
namespace {

constexpr std::string_view kFromController = "controller ->";
constexpr std::string_view kFromTool = "tool ->";
constexpr std::string_view kCommand = ">";

// Quotes do not count: the words of a command have lost theirs.
bool Matches(const TimelineEntry& entry, std::string_view pattern, bool whole) {
  std::string line = entry.Line();
  std::erase(line, '"');
  return whole ? line == pattern : line.find(pattern) != line.npos;
}

}  // namespace

std::string TimelineEntry::Line() const {
  return who == kFromController || who == kFromTool ? who + " " + text : text;
}

void Timeline::Follow(World& world) {
  world.Pic().OnTraffic([this](const Traffic& traffic) {
    const bool fromTool = traffic.direction == Traffic::Direction::kFromTool;
    Add({traffic.at, std::string(fromTool ? kFromTool : kFromController), Describe(traffic)});
    if (showBytes_ && !silent_) out_ << std::string(26, ' ') << DescribeBytes(traffic.wire) << "\n";
  });
  world.OnEntry([this](TimelineEntry entry, bool noticed) { Add(std::move(entry), noticed); });
}

void Timeline::StopFollowing(World& world) {
  world.Pic().OnTraffic({});
  world.OnEntry({});
}

void Timeline::Add(TimelineEntry entry, bool noticed) {
  if ((noticed || showAll_) && !silent_)
    out_ << std::setw(9) << FormatSeconds(entry.at) << "  " << std::left << std::setw(13) << entry.who
         << std::right << "  " << entry.text << "\n";
  entries_.push_back(std::move(entry));
  noticed_.push_back(noticed);
}

Problem Timeline::Expect(std::string_view pattern, bool whole, std::optional<Duration> at) {
  for (size_t i = next_; i < entries_.size(); ++i) {
    if (!Matches(entries_[i], pattern, whole)) continue;
    constexpr Duration kRounding(500);
    if (at && (entries_[i].at > *at + kRounding || entries_[i].at < *at - kRounding))
      return "\"" + entries_[i].Line() + "\" came at " + FormatSeconds(entries_[i].at) + " s, expected at " +
             FormatSeconds(*at) + " s";
    next_ = i + 1;
    return {};
  }
  return "\"" + std::string(pattern) + "\" did not come; " + Recent();
}

Problem Timeline::ExpectNone(std::string_view pattern, bool whole) const {
  for (size_t i = next_; i < entries_.size(); ++i)
    if (Matches(entries_[i], pattern, whole))
      return "\"" + entries_[i].Line() + "\" came at " + FormatSeconds(entries_[i].at) + " s";
  return {};
}

Problem Timeline::ExpectNext(std::optional<std::string_view> line) {
  size_t i = next_;
  while (i < entries_.size() && (!noticed_[i] || entries_[i].who == kCommand)) ++i;
  const bool comes = i < entries_.size();
  if (comes != line.has_value() || (comes && !Matches(entries_[i], *line, true)))
    return (line ? "\"" + std::string(*line) + "\" did not come next; " : std::string()) + Recent();
  next_ = comes ? i + 1 : i;
  return {};
}

std::string Timeline::Recent() const {
  constexpr size_t kMost = 12;
  if (next_ == entries_.size()) return "nothing happened since the last expectation was met";
  std::string text = "since the last expectation was met:";
  for (size_t i = next_; i < entries_.size() && i < next_ + kMost; ++i)
    text += "\n  " + FormatSeconds(entries_[i].at) + "  " + entries_[i].Line();
  if (entries_.size() > next_ + kMost) text += "\n  and more";
  return text;
}

}  // namespace simulator
