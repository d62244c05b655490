// The tests of the Windows programs, seen from outside: windows_test --exe-dir DIRECTORY
// [SCENARIOS] [GoogleTest options]. Starts itself again beside a Windows of its own.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "simulator/wine/session.h"
#include "simulator/wine/wine_world.h"
#include "tests/scenarios/scenario.h"

int main(int count, char** arguments) {
  if (count < 3 || std::strcmp(arguments[1], "--exe-dir") != 0) {
    std::fprintf(stderr, "usage: windows_test --exe-dir DIRECTORY [SCENARIOS] [GoogleTest options]\n");
    return 2;
  }
  simulator::EnterWindows(arguments, arguments[2]);
  testing::InitGoogleTest(&count, arguments);
  RegisterScenarios(count > 3 ? arguments[3] : VELTRA_SCENARIOS, "windows",
                    [] { return std::make_unique<simulator::WineWorld>(); });
  return RUN_ALL_TESTS();
}
