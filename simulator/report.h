// Where simulated devices say what they were told. They know nothing else of the world around them, so that
// the same sources make the libraries that a real Windows loads: there a file keeps the record, here the
// machine does.
#pragma once

#include <string>

namespace simulator {

void Report(const char* device, const std::string& call);

}  // namespace simulator
