// In the libraries that a real Windows loads the record of what a device was told is a text file: one line
// for each call, at the end of the file that the environment names, else of devices.log in the current
// directory.
#include <cstdio>
#include <cstdlib>

#include "simulator/report.h"

void simulator::Report(const char* device, const std::string& call) {
  const char* name = std::getenv("VELTRA_DEVICE_LOG");
  FILE* file = std::fopen(name ? name : "devices.log", "ab");
  if (!file) return;
  std::fprintf(file, "%s %s\n", device, call.c_str());
  std::fclose(file);
}
