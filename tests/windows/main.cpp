// The tests of the Windows programs, seen from outside: windows_test --exe-dir DIRECTORY [GoogleTest
// options]. Starts itself again beside a Windows of its own.
#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/windows/process.h"

namespace {

int RunInSession(char** arguments) {
  std::vector<char*> command = {const_cast<char*>(VELTRA_SESSION_SCRIPT)};
  for (char** argument = arguments; *argument; ++argument) command.push_back(*argument);
  command.push_back(nullptr);
  setenv("VELTRA_SERIAL_SHIM", VELTRA_SERIAL_SHIM_PATH, 1);
  execv(command[0], command.data());
  std::perror(command[0]);
  return 1;
}

}  // namespace

int main(int count, char** arguments) {
  if (!std::getenv("VELTRA_WINE_SESSION")) return RunInSession(arguments);
  testing::InitGoogleTest(&count, arguments);
  if (count != 3 || std::strcmp(arguments[1], "--exe-dir") != 0) {
    std::fprintf(stderr, "usage: windows_test --exe-dir DIRECTORY [GoogleTest options]\n");
    return 2;
  }
  windows_test::SetProgramDirectory(std::filesystem::absolute(arguments[2]).string());
  signal(SIGPIPE, SIG_IGN);  // a program that has ended is reported where it is written to
  return RUN_ALL_TESTS();
}
