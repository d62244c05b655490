// One tablet with the tool on it for all inputs of a run; boxes are answered at once.
#pragma once

#include <cstdlib>

#include "simulator/tablet.h"

namespace fuzz {

inline simulator::SimulatedTablet& Tablet() {
  static simulator::SimulatedTablet* const tablet = [] {
    auto* made = new simulator::SimulatedTablet;  // stays to the end of the process
    made->Machine().boxes.automaticAnswer = IDOK;
    if (!made->StartAndSettle()) std::abort();
    return made;
  }();
  return *tablet;
}

// The tool lives and serves: a press becomes something, the main window answers.
inline void ExpectAlive() {
  constexpr LRESULT kCodecStates[] = {1, 2};
  const std::optional<LRESULT> answer = Tablet().Ask(WM_APP + 0x770);
  if (!answer || (*answer != kCodecStates[0] && *answer != kCodecStates[1])) std::abort();
}

}  // namespace fuzz
