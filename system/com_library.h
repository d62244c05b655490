// COM on the main thread.
#pragma once

#include <windows.h>

#include <objbase.h>

namespace veltra {

// From the start of the tool to its end. Whoever uses an object of COM holds it too: the session may end
// meanwhile.
class ComLibrary {
 public:
  ComLibrary() : initialized_(SUCCEEDED(CoInitialize(nullptr))) {}
  ~ComLibrary() {
    if (initialized_) CoUninitialize();
  }
  ComLibrary(const ComLibrary&) = delete;
  ComLibrary& operator=(const ComLibrary&) = delete;

 private:
  bool initialized_;
};

}  // namespace veltra
