// What counts as a press of a switch when hands tremble, a pure core: one that was held for a while, and not
// right after a release.
#pragma once

#include <cstdint>
#include <optional>

namespace veltra {

// Times in ms; 0: off.
struct PressRules {
  int32_t acceptMs = 0;  // a press counts when it has been held that long
  int32_t guardMs = 0;   // after a release, presses are ignored that long, with their releases
};

// Of one switch. `now` is the time of the event in ms, from any origin, and may overflow. With both rules off
// everything counts at once.
class PressFilter {
 public:
  enum class Outcome {
    kNothing,
    kCounts,          // the press, or the release
    kAwait,           // the press does when it is still held in acceptMs: OnAccepted
    kPressedAndLeft,  // the release, and before it the press, which nobody has looked at in time
  };

  Outcome OnPress(uint32_t now, const PressRules& rules);
  Outcome OnRelease(uint32_t now, const PressRules& rules);
  // acceptMs are over; whether the press counts now.
  bool OnAccepted();
  // A press that does not count yet never will.
  void Forget();

 private:
  enum class State { kUp, kAwaited, kDown, kIgnored };

  State state_ = State::kUp;
  uint32_t pressedAt_ = 0;
  std::optional<uint32_t> releasedAt_;  // the last time that counted
};

}  // namespace veltra
