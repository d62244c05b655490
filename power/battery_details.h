// The battery pack's identity and measurements: thirteen texts that the controller answers on query.
#pragma once

#include <string_view>

namespace veltra {

struct BatteryDetail {
  int index;  // 1 to 13
  std::string_view query;
};

constexpr BatteryDetail kBatteryDetails[] = {
    {1, "GetBatteryManufacturer"},   {2, "GetBatteryManufactureDate"}, {3, "GetBatterySerial"},
    {4, "GetBatteryDeviceName"},     {5, "GetBatteryChemistry"},       {6, "GetBatteryTemperature"},
    {7, "GetBatteryVoltage"},        {8, "GetBatteryCurrent"},         {9, "GetBatteryRemainingCapacity"},
    {10, "GetBatteryStatus"},        {11, "GetBatteryCycles"},         {12, "GetBatteryDesignCapacity"},
    {13, "GetBatteryDesignVoltage"},
};

}  // namespace veltra
