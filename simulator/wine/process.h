// A Windows program that the test started, under Wine.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "simulator/file_descriptor.h"
#include "simulator/wine/failure.h"
#include "simulator/world.h"

namespace simulator {

// The directory of the programs under test.
void SetProgramDirectory(std::string directory);
std::string ProgramPath(const std::string& name);

class WineProcess {
 public:
  // Starts a program of the program directory, or one of Windows by its name without an ending.
  explicit WineProcess(const std::string& program, const std::vector<std::string>& arguments = {});
  ~WineProcess();  // ends it the hard way when it still runs
  WineProcess(const WineProcess&) = delete;
  WineProcess& operator=(const WineProcess&) = delete;

  bool WriteLine(const std::string& line);
  // The next line of its output, when it is there by now.
  std::optional<std::string> TakeLine();
  // Everything until the program closes its output.
  std::string ReadAll();

  bool IsRunning();
  [[nodiscard]] size_t ThreadCount() const;
  // Waits for the end.
  int ExitCode();

 private:
  // Waits that long for output; false when none came.
  bool ReadMore(Duration limit);

  pid_t pid_ = -1;
  std::optional<int> exitCode_;
  FileDescriptor input_;
  FileDescriptor output_;
  std::string received_;  // read and not taken as a line yet
};

}  // namespace simulator
