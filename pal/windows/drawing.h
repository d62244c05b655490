// Brushes and what is drawn with them.
#pragma once

#include <windows.h>

#include <map>

namespace pal {

struct Drawing {
  std::map<HGDIOBJ, COLORREF> brushes;     // that the program made
  std::map<HDC, HGDIOBJ> selectedBrushes;  // of the device contexts in which it draws now
  uintptr_t lastHandle = 0x60000;
};

}  // namespace pal
