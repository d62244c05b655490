#include "simulator/mouse_filter.h"

#include <string>

#include "simulator/report.h"

void WINAPI MouseFilter(int32_t mode) {
  simulator::Report("mouse filter", std::to_string(mode));
}
