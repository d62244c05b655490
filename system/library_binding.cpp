#include "system/library_binding.h"

#include "system/folders.h"

namespace veltra {
namespace {

// Windows 7 has it after an update of 2011 only, together with the flags of LoadLibraryExW that name places.
using SetDefaultDirectories = BOOL(WINAPI*)(DWORD);
SetDefaultDirectories FindSetDefaultDirectories() {
  return FindExport<SetDefaultDirectories>(GetModuleHandleW(TEXT("kernel32.dll")),
                                           "SetDefaultDllDirectories");
}

}  // namespace

void LoadOnlyFromSafePlaces() {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
  SetDllDirectoryW(TEXT(""));  // not from the current directory
  if (const auto setDirectories = FindSetDefaultDirectories())
    setDirectories(LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
}

HMODULE LoadOwnLibrary(const WCHAR* fileName) {
  const WideText directory = ModuleDirectory();
  if (directory.empty()) return nullptr;
  const DWORD places = FindSetDefaultDirectories()
                           ? LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32
                           : LOAD_WITH_ALTERED_SEARCH_PATH;
  return LoadLibraryExW((directory + fileName).c_str(), nullptr, places);
}

// Where the flag is unknown, Windows looks in the program's own directory first.
HMODULE LoadSystemLibrary(const WCHAR* fileName) {
  const DWORD places = FindSetDefaultDirectories() ? LOAD_LIBRARY_SEARCH_SYSTEM32 : 0;
  return LoadLibraryExW(fileName, nullptr, places);
}

}  // namespace veltra
