// The battery pack's identity and measurements: thirteen texts that the controller answers on query. They are
// shown exactly as it sends them.
#pragma once

#include <windows.h>

#include <string_view>

#include "base/text.h"

namespace veltra {

struct BatteryDetail {
  int index;  // 1 to 13
  std::string_view query;
  const WCHAR* label;
};

constexpr BatteryDetail kBatteryDetails[] = {
    {1, "GetBatteryManufacturer", TEXT("Manufacturer: ")},
    {2, "GetBatteryManufactureDate", TEXT("\nManufacturer date: ")},
    {3, "GetBatterySerial", TEXT("\nSerial: ")},
    {4, "GetBatteryDeviceName", TEXT("\nDevice name: ")},
    {5, "GetBatteryChemistry", TEXT("\nChemistry: ")},
    {6, "GetBatteryTemperature", TEXT("\nTemperature: ")},
    {7, "GetBatteryVoltage", TEXT("\nVoltage: ")},
    {8, "GetBatteryCurrent", TEXT("\nCurrent: ")},
    {9, "GetBatteryRemainingCapacity", TEXT("\nRemaining capacity: ")},
    {10, "GetBatteryStatus", TEXT("\nStatus: ")},
    {11, "GetBatteryCycles", TEXT("\nCycles: ")},
    {12, "GetBatteryDesignCapacity", TEXT("\nDesign capacity: ")},
    {13, "GetBatteryDesignVoltage", TEXT("\nDesign voltage: ")},
};

// Asks the controller for all of them, in index order.
void QueryBatteryDetails();

// One of them as the controller answered it; empty when it has not.
WideText BatteryDetailText(int index);

// Every label with its text; a detail without an answer is empty.
WideText BatteryDetailsText();

}  // namespace veltra
