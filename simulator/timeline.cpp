#include "simulator/timeline.h"

#include <algorithm>
#include <iomanip>
#include <ostream>

namespace simulator {
namespace {

constexpr std::string_view kFromController = "controller ->";
constexpr std::string_view kFromTool = "tool ->";
constexpr std::string_view kCommand = ">";

bool IsOfLine(const TimelineEntry& entry) {
  return entry.who == kFromController || entry.who == kFromTool;
}

constexpr std::string_view kPlain = "\033[0m";

// The first row whose beginnings fit gives the colour; what is in no row has none.
struct Colour {
  std::string_view who;
  std::string_view text;
  std::string_view code;
};
constexpr std::string_view kBold = "\033[1m";
constexpr std::string_view kGreen = "\033[32m";
constexpr std::string_view kYellow = "\033[33m";
constexpr std::string_view kMagenta = "\033[35m";
constexpr std::string_view kCyan = "\033[36m";
constexpr Colour kColours[] = {
    {kCommand, "", kBold},      {kFromController, "", kCyan}, {kFromTool, "", kMagenta},
    {"", "mouse ", kGreen},     {"", "key ", kGreen},         {"", "joystick button", kGreen},
    {"", "box ", kYellow},      {"", "answer ", kYellow},     {"", "dialog ", kYellow},
    {"", "tray ", kYellow},     {"", "menu ", kYellow},       {"", "sound ", kYellow},
    {"", "file box ", kYellow},
};

std::string_view ColourOf(const TimelineEntry& entry) {
  const auto* row = std::ranges::find_if(kColours, [&](const Colour& colour) {
    return entry.who.starts_with(colour.who) && entry.text.starts_with(colour.text);
  });
  return row == std::end(kColours) ? std::string_view() : row->code;
}

// Entries of one source are in order in every world.
const std::string& SourceOf(const TimelineEntry& entry) {
  static const std::string line = "line";
  return IsOfLine(entry) ? line : entry.who;
}

// The pattern comes without quotes.
bool Matches(const TimelineEntry& entry, std::string_view pattern, bool whole) {
  std::string line = entry.Line();
  std::erase(line, '"');
  return whole ? line == pattern : line.find(pattern) != line.npos;
}

}  // namespace

std::string TimelineEntry::Line() const {
  return IsOfLine(*this) ? who + " " + text : text;
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
  if ((noticed || showAll_) && !silent_) Print(entry);
  entries_.push_back(std::move(entry));
  noticed_.push_back(noticed);
}

void Timeline::Print(const TimelineEntry& entry) {
  if (onPrint_) onPrint_();
  const std::string_view colour = inColour_ ? ColourOf(entry) : std::string_view();
  out_ << colour << std::setw(9) << FormatSeconds(entry.at) << "  " << std::left << std::setw(13) << entry.who
       << std::right << "  " << entry.text << (colour.empty() ? "" : kPlain) << "\n";
}

void Timeline::SkipToNow() {
  next_ = entries_.size();
  for (auto& [source, next] : nextOf_) next = next_;
}

// It stands before the last one that was expected, but may have come later.
bool Timeline::IsLate(size_t entry) const {
  const auto ofSource = nextOf_.find(SourceOf(entries_[entry]));
  const bool isNew = ofSource == nextOf_.end() || entry >= ofSource->second;
  return isNew && next_ > 0 && entries_[entry].at + disorder_ > entries_[next_ - 1].at;
}

Problem Timeline::Expect(std::string_view pattern, bool whole, std::optional<Duration> at) {
  for (size_t i = disorder_ > Duration(0) ? 0 : next_; i < entries_.size(); ++i) {
    if (!Matches(entries_[i], pattern, whole) || (i < next_ && !IsLate(i))) continue;
    constexpr Duration kRounding(500);
    if (at && (entries_[i].at > *at + kRounding || entries_[i].at < *at - kRounding))
      return "\"" + entries_[i].Line() + "\" came at " + FormatSeconds(entries_[i].at) + " s, expected at " +
             FormatSeconds(*at) + " s";
    nextOf_[SourceOf(entries_[i])] = i + 1;
    next_ = std::max(next_, i + 1);
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
