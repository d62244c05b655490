// Scenario files as tests: one for each file.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "simulator/world.h"

// Registers a test for each scenario of the directory that is played in the world of that name; each gets a
// world of its own. A story that names no worlds is the tablet's. Returns how many there are.
int RegisterScenarios(const std::filesystem::path& directory, std::string_view worldName,
                      const std::function<std::unique_ptr<simulator::World>()>& makeWorld);
