#include "report/device_report.h"

#include "base/ansi_text.h"
#include "base/xml_writer.h"
#include "board/platform_info.h"
#include "link/identity_store.h"
#include "power/battery_details.h"
#include "system/copied_data.h"
#include "system/numbers.h"

namespace veltra {
namespace {

// ---- hardware: what the controller says of itself, the board and the touch screen ---------------------------

template <WideText DeviceIdentity::*Field>
WideText IdentityText(const DeviceIdentity& identity) {
  return identity.*Field;
}

WideText FirmwareText(const DeviceIdentity& identity) {
  return ConvertFromAnsi(identity.firmwareVersionText).value_or(WideText());
}

struct HardwareItem {
  WideView key;
  WideText (*value)(const DeviceIdentity& identity);
};

constexpr HardwareItem kHardwareItems[] = {
    {TEXT("PIC Firmware"), FirmwareText},
    {TEXT("PCBSn"), IdentityText<&DeviceIdentity::pcbSerial>},
    {TEXT("PCBVersion"), IdentityText<&DeviceIdentity::pcbVersion>},
    {TEXT("DevSn"), IdentityText<&DeviceIdentity::serialNumber>},
    {TEXT("TouchSn"), IdentityText<&DeviceIdentity::touchSerial>},
    {TEXT("TouchVersion"), IdentityText<&DeviceIdentity::touchVersion>},
    {TEXT("TouchFirmware"), IdentityText<&DeviceIdentity::touchFirmware>},
};

// ---- platform: what the board's library says ----------------------------------------------------------------

template <auto Record, auto Field>
WideText PlatformText(const PlatformInfo& platform) {
  return ConvertFromAnsi(TextOfField((platform.*Record).*Field)).value_or(WideText());
}

template <auto Record, auto Field>
WideText PlatformNumber(const PlatformInfo& platform) {
  return FormatText(TEXT("%d"), (platform.*Record).*Field);
}

struct PlatformItem {
  WideView key;
  WideText (*value)(const PlatformInfo& platform);
};

constexpr PlatformItem kPlatformItems[] = {
    {TEXT("BoardName"), PlatformText<&PlatformInfo::board, &BoardInfo::boardName>},
    {TEXT("Manufacturer"), PlatformText<&PlatformInfo::board, &BoardInfo::manufacturer>},
    {TEXT("Serial"), PlatformText<&PlatformInfo::board, &BoardInfo::serialNumber>},
    {TEXT("HardwareVersion"), PlatformText<&PlatformInfo::board, &BoardInfo::hardwareVersion>},
    {TEXT("CarrierInfo"), PlatformText<&PlatformInfo::board, &BoardInfo::carrierInfo>},
    {TEXT("FirmwareVersion"), PlatformText<&PlatformInfo::board, &BoardInfo::firmwareVersion>},
    {TEXT("CPUName"), PlatformText<&PlatformInfo::cpu, &CpuInfo::name>},
    {TEXT("CPUCount"), PlatformNumber<&PlatformInfo::cpu, &CpuInfo::cpuCount>},
    {TEXT("CPUCoreCount"), PlatformNumber<&PlatformInfo::cpu, &CpuInfo::coreCount>},
    {TEXT("CPUThreadCount"), PlatformNumber<&PlatformInfo::cpu, &CpuInfo::threadCount>},
    {TEXT("MemTotal"), PlatformNumber<&PlatformInfo::memory, &MemoryInfo::total>},
    {TEXT("MemFree"), PlatformNumber<&PlatformInfo::memory, &MemoryInfo::free>},
    {TEXT("MemSpeed"), PlatformNumber<&PlatformInfo::memory, &MemoryInfo::speed>},
    {TEXT("MemType"), PlatformText<&PlatformInfo::memory, &MemoryInfo::type>},
};

// ---- battery: what the controller answered about the pack ---------------------------------------------------

struct BatteryItem {
  WideView key;
  int detail;
};

constexpr BatteryItem kBatteryItems[] = {
    {TEXT("Name"), 4},
    {TEXT("Serial"), 3},
    {TEXT("Date"), 2},
    {TEXT("Temp"), 6},
    {TEXT("Voltage"), 7},
    {TEXT("Current"), 8},
    {TEXT("Manufacturer"), 1},
    {TEXT("Chemistry"), 5},
    {TEXT("CapacityRemaining"), 9},
    {TEXT("CapacityDesign"), 12},
    {TEXT("VoltageDesign"), 13},
    {TEXT("Cycles"), 11},
    {TEXT("Status"), 10},
};

// ---- the document -------------------------------------------------------------------------------------------

void AddItem(XmlElement& report, const WCHAR* category, WideView key, WideText value) {
  report.children.push_back(
      {TEXT("Item"), {{TEXT("C"), category}, {TEXT("K"), WideText(key)}, {TEXT("V"), std::move(value)}}, {}});
}

void AddHardware(XmlElement& report) {
  for (const HardwareItem& item : kHardwareItems)
    AddItem(report, TEXT("HW"), item.key, item.value(Identity()));
}

void AddPlatform(XmlElement& report) {
  const std::optional<PlatformInfo> platform = ReadPlatformInfo();
  if (!platform) return;
  for (const PlatformItem& item : kPlatformItems)
    AddItem(report, TEXT("Platform"), item.key, item.value(*platform));
}

void AddBattery(XmlElement& report) {
  for (const BatteryItem& item : kBatteryItems)
    AddItem(report, TEXT("Battery"), item.key, BatteryDetailText(item.detail));
}

}  // namespace

WideText BuildDeviceReport(WPARAM selection) {
  XmlElement report = {TEXT("Report"), {{TEXT("Version"), TEXT("1")}}, {}};
  if (selection == kWholeReport) {
    AddHardware(report);
    AddPlatform(report);
  }
  if (selection == kWholeReport || selection == kBatteryReport) AddBattery(report);
  return WriteXml(report);
}

void SendDeviceReport(HWND receiver, WPARAM selection) {
  const WideText report = BuildDeviceReport(selection);
  const auto* bytes = reinterpret_cast<const uint8_t*>(report.c_str());
  SendCopiedData(receiver, kReportTag, {bytes, (report.size() + 1) * sizeof(WCHAR)});
}

}  // namespace veltra
