// Natively the contract tests are the program that runs on a machine, all in one as they are under Windows.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>

#include "pal/machine/machine.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  pal::Machine machine;
  machine.resources.Load(VELTRA_RESOURCES);
  // COM2 has a plug that sends back what it is sent.
  pal::SerialPort& loopBack = machine.serial.Add(2);
  loopBack.OnWrite([&](std::span<const uint8_t> bytes) { loopBack.Deliver(bytes); });

  machine.StartProgram([] { return RUN_ALL_TESTS(); });
  const bool ended =
      machine.clock.AdvanceUntil([&] { return machine.ExitCode().has_value(); }, std::chrono::hours(24));
  if (ended) return *machine.ExitCode();
  std::fputs("the tests wait for something that never comes\n", stderr);
  return 1;
}
