// The report document, written out from the values that a test expects in it.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace expected_report {

using Text = std::u16string_view;
using Values =
    std::initializer_list<Text>;  // in the order of the items; those at the end may be left out: empty

inline std::u16string Section(Text category, std::span<const Text> keys, Values values) {
  std::u16string section;
  for (std::size_t n = 0; n < keys.size(); ++n) {
    const Text value = n < values.size() ? values.begin()[n] : Text();
    for (const Text part : {Text(u"<Item C=\""), category, Text(u"\" K=\""), keys[n], Text(u"\" V=\""), value,
                            Text(u"\"/>\r\n")})
      section += part;
  }
  return section;
}

inline std::u16string Hardware(Values values) {
  static constexpr Text kKeys[] = {u"PIC Firmware", u"PCBSn",        u"PCBVersion",   u"DevSn",
                                   u"TouchSn",      u"TouchVersion", u"TouchFirmware"};
  return Section(u"HW", kKeys, values);
}

// What the simulated board says of itself.
inline std::u16string Platform(Values values = {u"QX7-i", u"Brookfield Embedded", u"BF-0099123", u"B.2",
                                                u"tablet carrier 4", u"1.13", u"Corvid N2600 @ 1.60GHz", u"1",
                                                u"2", u"4", u"2048", u"1187", u"800", u"DDR3"}) {
  static constexpr Text kKeys[] = {u"BoardName",    u"Manufacturer",    u"Serial",   u"HardwareVersion",
                                   u"CarrierInfo",  u"FirmwareVersion", u"CPUName",  u"CPUCount",
                                   u"CPUCoreCount", u"CPUThreadCount",  u"MemTotal", u"MemFree",
                                   u"MemSpeed",     u"MemType"};
  return Section(u"Platform", kKeys, values);
}

inline std::u16string Battery(Values values) {
  static constexpr Text kKeys[] = {u"Name",           u"Serial",        u"Date",
                                   u"Temp",           u"Voltage",       u"Current",
                                   u"Manufacturer",   u"Chemistry",     u"CapacityRemaining",
                                   u"CapacityDesign", u"VoltageDesign", u"Cycles",
                                   u"Status"};
  return Section(u"Battery", kKeys, values);
}

inline std::u16string Report(std::initializer_list<Text> sections) {
  std::u16string report = u"<Report Version=\"1\">\r\n";
  for (const Text section : sections) report += section;
  return report += u"</Report>\r\n";
}

inline constexpr Text kNoItems = u"<Report Version=\"1\"/>\r\n";

}  // namespace expected_report
