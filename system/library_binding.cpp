#include "system/library_binding.h"

#include "system/folders.h"

namespace veltra {

HMODULE LoadOwnLibrary(const WCHAR* fileName) {
  const WideText directory = ModuleDirectory();
  if (directory.empty()) return nullptr;
  return LoadLibraryExW((directory + fileName).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

}  // namespace veltra
