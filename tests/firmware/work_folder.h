// An empty folder for one test, and programs that run in it.
#pragma once

#include <stdlib.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace veltra {

class WorkFolder {
 public:
  WorkFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "hex_test_XXXXXX").string();
    if (!mkdtemp(name.data())) throw std::runtime_error("no folder for the test");
    path_ = name;
  }
  ~WorkFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  void Write(const std::string& name, std::string_view content) const {
    std::ofstream(path_ / name, std::ios::binary) << content;
  }
  std::string Read(const std::string& name) const {
    std::ifstream file(path_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  // The exit code of a shell command that runs in the folder, -1 when it ended otherwise.
  int Run(const std::string& command) const {
    const int status = system(("cd " + path_.string() + " && " + command).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  std::filesystem::path path_;
};

inline bool HaveProgram(const std::string& name) {
  return system(("command -v " + name + " >/dev/null").c_str()) == 0;
}

}  // namespace veltra
