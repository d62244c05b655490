#include "simulator/timeline.h"

#include <iomanip>
#include <ostream>

namespace simulator {
namespace {

constexpr std::string_view kFromController = "controller ->";
constexpr std::string_view kFromTool = "tool ->";
constexpr std::string_view kEffect = "effect";
constexpr std::string_view kBus = "i2c";  // hundreds of transfers at every start

// Effects that a person at the tablet, or beside it, would notice. The others are the tool's own
// housekeeping.
// clang-format off
template <class Detail>
constexpr bool kNoticed =
    std::is_same_v<Detail, pal::SerialOpened> ||
    std::is_same_v<Detail, pal::SerialClosed> ||
    std::is_same_v<Detail, pal::MouseInput> ||
    std::is_same_v<Detail, pal::KeyInput> ||
    std::is_same_v<Detail, pal::ExecutionState> ||
    std::is_same_v<Detail, pal::WindowsExit> ||
    std::is_same_v<Detail, pal::SessionHeld> ||
    std::is_same_v<Detail, pal::Beep> ||
    std::is_same_v<Detail, pal::BoxShown> ||
    std::is_same_v<Detail, pal::BoxAnswered> ||
    std::is_same_v<Detail, pal::DialogShown> ||
    std::is_same_v<Detail, pal::DialogHidden> ||
    std::is_same_v<Detail, pal::FileBoxShown> ||
    std::is_same_v<Detail, pal::FileBoxAnswered> ||
    std::is_same_v<Detail, pal::ForeignMessageSent> ||
    std::is_same_v<Detail, pal::DeviceCall> ||
    std::is_same_v<Detail, pal::TrayChange> ||
    std::is_same_v<Detail, pal::MenuShown> ||
    std::is_same_v<Detail, pal::MenuChosen> ||
    std::is_same_v<Detail, pal::SoundPlayed> ||
    std::is_same_v<Detail, pal::PlaybackLevel> ||
    std::is_same_v<Detail, pal::ProgramExecuted> ||
    std::is_same_v<Detail, pal::ProgramStarted> ||
    std::is_same_v<Detail, pal::ProgramEnded>;
// clang-format on

bool IsNoticed(const pal::Effect& effect) {
  const auto* call = std::get_if<pal::DeviceCall>(&effect.detail);
  if (call && call->device == kBus) return false;
  return std::visit([](const auto& detail) { return kNoticed<std::decay_t<decltype(detail)>>; },
                    effect.detail);
}

bool Matches(const TimelineEntry& entry, std::string_view pattern, bool whole) {
  const std::string line = entry.Line();
  return whole ? line == pattern : line.find(pattern) != line.npos;
}

}  // namespace

std::string TimelineEntry::Line() const {
  return who == kFromController || who == kFromTool ? who + " " + text : text;
}

void Timeline::Follow(SimulatedTablet& tablet) {
  tablet.Pic().OnTraffic([this](const Traffic& traffic) {
    const bool fromTool = traffic.direction == Traffic::Direction::kFromTool;
    Add({traffic.at, std::string(fromTool ? kFromTool : kFromController), Describe(traffic)});
    if (showBytes_ && !silent_) out_ << std::string(26, ' ') << DescribeBytes(traffic.wire) << "\n";
  });
  tablet.Machine().OnEffect([this](const pal::Effect& effect) {
    Add({effect.at, std::string(kEffect), pal::Describe(effect)}, showAll_ || IsNoticed(effect));
  });
}

void Timeline::Add(TimelineEntry entry, bool print) {
  if (print && !silent_)
    out_ << std::setw(9) << FormatSeconds(entry.at) << "  " << std::left << std::setw(13) << entry.who
         << std::right << "  " << entry.text << "\n";
  entries_.push_back(std::move(entry));
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
