// Plays every scenario of a directory on a tablet of its own: one test for each file.
//   scenario_test [GoogleTest's options] [DIRECTORY]
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include "simulator/console.h"
#include "simulator/tablet_world.h"

namespace {

class Scenario : public testing::Test {
 public:
  explicit Scenario(std::filesystem::path file) : file_(std::move(file)) {}

  void TestBody() override {
    std::ifstream script(file_);
    ASSERT_TRUE(script) << file_;
    std::ostringstream timeline;
    simulator::TabletWorld tablet;
    simulator::Console console(tablet, timeline);
    const simulator::Problem problem = console.RunScript(script, file_.filename().string());
    EXPECT_FALSE(problem) << *problem << "\n\nThe story so far:\n" << timeline.str();
  }

 private:
  std::filesystem::path file_;
};

std::vector<std::filesystem::path> FindScenarios(const std::filesystem::path& directory) {
  std::vector<std::filesystem::path> files;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(directory, error))
    if (entry.path().extension() == ".scenario") files.push_back(entry.path());
  std::ranges::sort(files);
  return files;
}

}  // namespace

int main(int count, char** arguments) {
  testing::InitGoogleTest(&count, arguments);
  const std::filesystem::path directory = count > 1 ? arguments[1] : VELTRA_SCENARIOS;
  const std::vector<std::filesystem::path> files = FindScenarios(directory);
  if (files.empty()) {
    std::fprintf(stderr, "no scenarios in %s\n", directory.c_str());
    return 1;
  }
  for (const std::filesystem::path& file : files)
    testing::RegisterTest("Scenario", file.stem().c_str(), nullptr, nullptr, __FILE__, __LINE__,
                          [file]() -> testing::Test* { return new Scenario(file); });
  return RUN_ALL_TESTS();
}
