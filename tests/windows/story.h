// A test that tells what no story alone can: it plays lines of a story and looks beside them.
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "simulator/console.h"
#include "simulator/wine/wine_world.h"

namespace simulator {

class StoryTest : public testing::Test {
 protected:
  void Play(const std::string& lines) {
    std::istringstream script(lines);
    if (const Problem problem = console_.RunScript(script, "story")) Fail(*problem + "\n" + told_.str());
  }
  // The tool with these settings, when it has done everything that it does at its start.
  void Start(const std::string& settings = {}) {
    Play(settings + "set StartupDelay 0\nstart -s\nsettle\nmark\n");
  }

  WineWorld world;

 private:
  std::ostringstream told_;
  Console console_{world, told_};
};

}  // namespace simulator
