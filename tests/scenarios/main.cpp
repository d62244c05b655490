// Plays the scenarios of a directory on the simulated tablet: scenario_test [GoogleTest's options]
// [DIRECTORY]
#include <gtest/gtest.h>

#include <cstdio>

#include "simulator/tablet_world.h"
#include "tests/scenarios/scenario.h"

int main(int count, char** arguments) {
  testing::InitGoogleTest(&count, arguments);
  const char* directory = count > 1 ? arguments[1] : VELTRA_SCENARIOS;
  const auto makeTablet = [] { return std::make_unique<simulator::TabletWorld>(); };
  if (RegisterScenarios(directory, "tablet", makeTablet) == 0) {
    std::fprintf(stderr, "no scenarios in %s\n", directory);
    return 1;
  }
  return RUN_ALL_TESTS();
}
