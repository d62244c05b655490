// The text of demonstration.txt, part of the program.
#pragma once

namespace simulator {

extern const char kDemonstration[];

}  // namespace simulator
