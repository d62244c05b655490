// What is around the device tool: for whoever is sent it and does not see the tablet.
#pragma once

namespace probe {

// To the standard output, in UTF-8: Windows, the tool's settings, the serial ports, what lies beside this
// program of what the tool looks for, and its log, the older part first.
void PrintSurroundings();

}  // namespace probe
