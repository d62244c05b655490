// What the machine's Windows is, and what else runs on it.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "pal/machine/effects.h"

namespace pal {

class MachineMutex;
struct Mutex;

struct WindowsVersion {
  WORD major = 6;
  WORD minor = 1;
  WORD servicePack = 1;
};

struct WindowsSystem {
  explicit WindowsSystem(MachineMutex& mutex) : mutex_(mutex) {}

  WindowsVersion version;
  bool isWow64 = false;         // the program is a 32-bit one, Windows is not
  Time executedProgramTime{0};  // how long a program runs that the shell started

  void AddForeignMutex(std::u16string_view name);  // another process holds it
  // The shell does not find the program of that path any more. Any other counts as there.
  void RemoveProgram(std::u16string_view path);

  // ---- for the calls of Windows ----
  std::vector<std::weak_ptr<Mutex>> namedMutexes;
  std::vector<std::u16string> removedPrograms;

 private:
  MachineMutex& mutex_;
  std::vector<std::shared_ptr<Mutex>> foreignMutexes_;
};

// Windows 8 and later.
bool HasModernStandby(const WindowsSystem& system);

}  // namespace pal
