#include <limits>

#include "tests/tool_test.h"

namespace veltra {
namespace {

using simulator::SimulatedTablet;

class Settings : public ToolTest {};

struct Setting {
  std::u16string_view name;
  int32_t otherwise;
  int32_t stored;  // of a switch only 1 is on
};

constexpr int32_t kLowest = std::numeric_limits<int32_t>::min();
constexpr int32_t kHighest = std::numeric_limits<int32_t>::max();
// In the order in which they are written.
constexpr Setting kSettings[] = {{u"BattLow", 1, 0},
                                 {u"BattCrit", 1, 0},
                                 {u"BattLowPercentage", 10, 41},
                                 {u"BattCritPercentage", 5, -3},
                                 {u"SpeakerVol", -1, 70},
                                 {u"MicrophoneVol", -1, 6},
                                 {u"Sw1Start", 0, 9000},
                                 {u"DisableUSBBack", 0, 1},
                                 {u"DisableUSBBottom", 0, 1},
                                 {u"EnableFlightMode", 0, 1},
                                 {u"EnableWLAN", 1, 0},
                                 {u"EnableBluetooth", 1, 0},
                                 {u"EnableMobilePhone", 1, 0},
                                 {u"Sw1CmdVal", 0, kLowest},
                                 {u"Sw2CmdVal", 0, kHighest},
                                 {u"WakeupDelay", 1000, -5},
                                 {u"StartupDelay", 3000, 10},
                                 {u"AllowEscape", 1, 0},
                                 {u"CurrentLangID", 0x0809, 0xFFFE}};

TEST_F(Settings, AreReadAndWrittenAllOfThemInTheirOrder) {
  for (const bool areStored : {false, true}) {
    for (const Setting& setting : kSettings)
      if (areStored) SetUserValue(setting.name, setting.stored);
    mark = tablet.Mark();
    tablet.Start();
    tablet.Advance(1s);
    const auto writes = New<pal::RegistryWrite>();
    ASSERT_EQ(writes.size(), std::size(kSettings));
    for (size_t n = 0; n < writes.size(); ++n) {
      const Setting& setting = kSettings[n];
      EXPECT_EQ(writes[n].name, setting.name);
      EXPECT_EQ(writes[n].type, static_cast<uint32_t>(REG_DWORD));
      EXPECT_EQ(UserValue(setting.name),
                static_cast<uint32_t>(areStored ? setting.stored : setting.otherwise))
          << n;
    }
    EXPECT_EQ(machine.registry.ValueNames(HKEY_CURRENT_USER, SimulatedTablet::kUserKey).size(),
              std::size(kSettings));
    tablet.Advance(30s);
    ASSERT_TRUE(tablet.Quit());
  }
  EXPECT_TRUE(machine.registry.ValueNames(HKEY_LOCAL_MACHINE, SimulatedTablet::kUserKey).empty());
}

TEST_F(Settings, WhatIsNoFourByteNumberLeavesTheDefault) {
  const uint8_t text[] = {'8', 0, '0', 0, 0, 0};
  machine.registry.Set(HKEY_CURRENT_USER, SimulatedTablet::kUserKey, u"BattLowPercentage", REG_SZ, text);
  const uint8_t fourByteText[] = {'7', 0, 0, 0};  // the type is not looked at
  machine.registry.Set(HKEY_CURRENT_USER, SimulatedTablet::kUserKey, u"BattCritPercentage", REG_SZ,
                       fourByteText);
  SetUserValue(u"EnableWLAN", 2);
  Start();
  EXPECT_EQ(UserValue(u"BattLowPercentage"), 10U);
  EXPECT_EQ(UserValue(u"BattCritPercentage"), 0x37U);
  EXPECT_EQ(UserValue(u"EnableWLAN"), 0U);
}

TEST_F(Settings, SwitchClicksGiveTheCommandsUnlessTheyAreStored) {
  SetUserValue(u"SwClicks", 1);
  SetUserValue(u"Sw2CmdVal", 65);
  Start();
  EXPECT_EQ(UserValue(u"Sw1CmdVal"), static_cast<uint32_t>(-1));
  EXPECT_EQ(UserValue(u"Sw2CmdVal"), 65U);
  EXPECT_EQ(UserValue(u"SwClicks"), 1U);
}

TEST_F(Settings, LanguagesAreCompletedForTheThreadAndStoredAsTheyWere) {
  const std::pair<int32_t, int> languages[] = {
      {7, 0x0407},      {9, 0x0809}, {10, 0x040A}, {12, 0x040C},     {16, 0x0410},      {29, 0x041D},
      {0x0C07, 0x0C07}, {8, 8},      {19, 0x0413}, {0x0409, 0x0409}, {0x10013, 0x0413}, {0, 0x0809}};
  for (const auto& [stored, applied] : languages) {
    SetUserValue(u"CurrentLangID", stored);
    machine.system.version.major = stored == 7 ? 5 : 6;  // an old one knows the language of formats alone
    const size_t before = tablet.Mark();
    Start();
    const auto set = pal::Select<pal::LanguageSet>(tablet.Since(before));
    ASSERT_EQ(set.size(), 1U) << stored;
    EXPECT_EQ(set[0].language, applied);
    EXPECT_EQ(set[0].isLocale, machine.system.version.major < 6);
    EXPECT_EQ(UserValue(u"CurrentLangID"), static_cast<uint32_t>(stored & 0xFFFF));
    ASSERT_TRUE(tablet.Quit());
  }
}

TEST_F(Settings, ARegistryThatRefusesKeepsTheToolFromNothing) {
  machine.Fail("RegOpenKeyExW", 10, ERROR_ACCESS_DENIED);
  machine.Fail("RegCreateKeyExW", 10, ERROR_ACCESS_DENIED);
  SetUserValue(u"Sw1CmdVal", -1);
  Start();
  Did();
  Press(simulator::Button::kSwitch1);
  EXPECT_EQ(Did({"notify", "mouse"}), Texts{"notify 0xC000 1 1"});  // the default
}

}  // namespace
}  // namespace veltra
