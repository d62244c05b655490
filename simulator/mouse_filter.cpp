#include "simulator/mouse_filter.h"

#include <string>

#include "simulator/report.h"

void WINAPI MouseFilter(DWORD mode) {
  simulator::Report("mouse filter", std::to_string(mode));
}
