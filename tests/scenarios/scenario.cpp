#include "tests/scenarios/scenario.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <vector>

#include "simulator/console.h"

namespace {

using MakeWorld = std::function<std::unique_ptr<simulator::World>()>;

class Scenario : public testing::Test {
 public:
  Scenario(std::filesystem::path file, MakeWorld makeWorld)
      : file_(std::move(file)), makeWorld_(std::move(makeWorld)) {}

  void TestBody() override {
    std::ifstream script(file_);
    ASSERT_TRUE(script) << file_;
    std::ostringstream timeline;
    const std::unique_ptr<simulator::World> world = makeWorld_();
    simulator::Console console(*world, timeline);
    simulator::Problem problem;
    try {
      problem = console.RunScript(script, file_.filename().string());
    } catch (const std::exception& error) {
      problem = error.what();
    }
    EXPECT_FALSE(problem) << *problem << "\n\nThe story so far:\n" << timeline.str();
  }

 private:
  std::filesystem::path file_;
  MakeWorld makeWorld_;
};

bool IsPlayedIn(const std::filesystem::path& file, std::string_view worldName) {
  std::ifstream script(file);
  std::vector<std::string> words;
  for (std::string line; std::getline(script, line);)
    if (simulator::SplitWords(line, words) && !words.empty() && words[0] == "worlds")
      return std::ranges::find(words, worldName) != words.end();
  return worldName == "tablet";
}

}  // namespace

int RegisterScenarios(const std::filesystem::path& directory, std::string_view worldName,
                      const MakeWorld& makeWorld) {
  std::vector<std::filesystem::path> files;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(directory, error))
    if (entry.path().extension() == ".scenario" && IsPlayedIn(entry.path(), worldName))
      files.push_back(entry.path());
  std::ranges::sort(files);
  for (const std::filesystem::path& file : files)
    testing::RegisterTest("Scenario", file.stem().c_str(), nullptr, nullptr, __FILE__, __LINE__,
                          [file, makeWorld]() -> testing::Test* { return new Scenario(file, makeWorld); });
  return static_cast<int>(files.size());
}
