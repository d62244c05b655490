#include "simulator/wine/session.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "simulator/wine/process.h"

namespace simulator {
namespace {

constexpr char kInside[] = "VELTRA_WINE_SESSION";

void StartAgainInside(char** arguments, const std::filesystem::path& programs) {
  setenv("VELTRA_SERIAL_SHIM", VELTRA_SERIAL_SHIM_PATH, 0);
  setenv("VELTRA_DEVICES", (programs / "devices").c_str(), 1);
  std::vector<char*> command = {const_cast<char*>(VELTRA_SESSION_SCRIPT),
                                const_cast<char*>("/proc/self/exe")};
  command[1] = realpath(command[1], nullptr);
  for (char** argument = arguments + 1; *argument; ++argument) command.push_back(*argument);
  command.push_back(nullptr);
  execv(command[0], command.data());
  Fail(std::string(command[0]) + ": " + std::strerror(errno));
}

}  // namespace

void EnterWindows(char** arguments, const std::filesystem::path& programs) {
  const std::filesystem::path built = std::filesystem::absolute(programs);
  if (!std::getenv(kInside)) StartAgainInside(arguments, built);
  const std::filesystem::path installed = std::filesystem::path(std::getenv("WINEPREFIX")) / "drive_c/veltra";
  std::filesystem::remove_all(installed);
  std::filesystem::create_directories(installed);
  for (const std::filesystem::path& folder : {built, built / "devices"})
    for (const auto& entry : std::filesystem::directory_iterator(folder))
      if (entry.is_regular_file())
        std::filesystem::copy_file(entry.path(), installed / entry.path().filename());
  setenv("VELTRA_DEVICE_LOG", "C:\\veltra\\devices.log", 1);
  SetProgramDirectory(installed.string());
  signal(SIGPIPE, SIG_IGN);  // a program that has ended is reported where it is written to
}

}  // namespace simulator
