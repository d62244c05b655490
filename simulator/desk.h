// What stands around the tool on the tablet: the libraries in its directory and the maker's applications.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "pal/machine/machine.h"

namespace simulator {

// The libraries that the tool looks for.
enum class Library { kJoystick, kMouseFilter, kBoard, kEnglishMacros, kDutchMacros };

class Desk {
 public:
  // Puts all libraries into the program's directory, their devices as new, and the function tables.
  explicit Desk(pal::Machine& machine);
  Desk(const Desk&) = delete;
  Desk& operator=(const Desk&) = delete;

  // Without the export of that name, when one is named; false when there is none, and nothing changes.
  bool Install(Library library, std::string_view lacking = {});
  void Remove(Library library);
  // The file is there, and no library.
  void Damage(Library library);
  // The mouse filter under the undecorated name, as a 64-bit library exports it.
  void InstallPlainMouseFilter();

  // Opens a window of that class, as an application that starts does. One window of a class.
  HWND Open(std::string_view windowClass);
  // False when no such window is open.
  bool Close(std::string_view windowClass);
  // Null when no such window is open.
  [[nodiscard]] HWND Find(std::string_view windowClass) const;

 private:
  pal::Machine& machine_;
  std::map<std::string, HWND, std::less<>> windows_;
};

}  // namespace simulator
