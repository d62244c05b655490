// The tests of the Windows programs, seen from outside: windows_test --exe-dir DIRECTORY
// [SCENARIOS] [GoogleTest options]. Starts itself again beside a Windows of its own.
#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/scenarios/scenario.h"
#include "tests/windows/wine_world.h"

namespace {

int RunInSession(char** arguments, const char* programs) {
  std::vector<char*> command = {const_cast<char*>(VELTRA_SESSION_SCRIPT)};
  for (char** argument = arguments; *argument; ++argument) command.push_back(*argument);
  command.push_back(nullptr);
  setenv("VELTRA_SERIAL_SHIM", VELTRA_SERIAL_SHIM_PATH, 1);
  setenv("VELTRA_DEVICES", (std::filesystem::absolute(programs) / "devices").c_str(), 1);
  execv(command[0], command.data());
  std::perror(command[0]);
  return 1;
}

// The tool with its devices in one folder of this Windows, as on a tablet; returns the folder.
std::string InstallPrograms(const std::filesystem::path& built) {
  const std::filesystem::path installed = std::filesystem::path(std::getenv("WINEPREFIX")) / "drive_c/veltra";
  std::filesystem::remove_all(installed);
  std::filesystem::create_directories(installed);
  for (const std::filesystem::path& folder : {built, built / "devices"})
    for (const auto& entry : std::filesystem::directory_iterator(folder))
      if (entry.is_regular_file())
        std::filesystem::copy_file(entry.path(), installed / entry.path().filename());
  setenv("VELTRA_DEVICE_LOG", "C:\\veltra\\devices.log", 1);
  return installed.string();
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 3 || std::strcmp(arguments[1], "--exe-dir") != 0) {
    std::fprintf(stderr, "usage: windows_test --exe-dir DIRECTORY [SCENARIOS] [GoogleTest options]\n");
    return 2;
  }
  if (!std::getenv("VELTRA_WINE_SESSION")) return RunInSession(arguments, arguments[2]);
  testing::InitGoogleTest(&count, arguments);
  windows_test::SetProgramDirectory(InstallPrograms(std::filesystem::absolute(arguments[2])));
  signal(SIGPIPE, SIG_IGN);  // a program that has ended is reported where it is written to
  RegisterScenarios(count > 3 ? arguments[3] : VELTRA_SCENARIOS, "windows",
                    [] { return std::make_unique<windows_test::WineWorld>(); });
  return RUN_ALL_TESTS();
}
