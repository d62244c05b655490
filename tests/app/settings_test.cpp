#include "tests/tool_test.h"

namespace veltra {
namespace {

using simulator::SimulatedTablet;

class Settings : public ToolTest {};

struct Saved {
  std::u16string_view name;
  int32_t value;
};

constexpr Saved kDefaults[] = {
    {u"BattLow", 1},
    {u"BattCrit", 1},
    {u"BattLowPercentage", 10},
    {u"BattCritPercentage", 5},
    {u"SpeakerVol", -1},
    {u"MicrophoneVol", -1},
    {u"Sw1Start", 0},
    {u"DisableUSBBack", 0},
    {u"DisableUSBBottom", 0},
    {u"EnableFlightMode", 0},
    {u"EnableWLAN", 1},
    {u"EnableBluetooth", 1},
    {u"EnableMobilePhone", 1},
    {u"Sw1CmdVal", 0},
    {u"Sw2CmdVal", 0},
    {u"WakeupDelay", 1000},
    {u"StartupDelay", 3000},
    {u"AllowEscape", 1},
    {u"CurrentLangID", 0x0809},
};

TEST_F(Settings, TheFirstStartWritesTheNineteenDefaultsInTheirOrder) {
  ASSERT_TRUE(tablet.StartAndSettle());
  const auto writes = New<pal::RegistryWrite>();
  ASSERT_EQ(writes.size(), std::size(kDefaults));
  for (size_t n = 0; n < writes.size(); ++n) {
    EXPECT_EQ(writes[n].name, kDefaults[n].name);
    EXPECT_EQ(writes[n].type, static_cast<uint32_t>(REG_DWORD));
    EXPECT_EQ(UserValue(kDefaults[n].name), static_cast<uint32_t>(kDefaults[n].value));
  }
  EXPECT_EQ(machine.RegistryValueNames(HKEY_CURRENT_USER, SimulatedTablet::kUserKey).size(),
            std::size(kDefaults));
  EXPECT_TRUE(machine.RegistryValueNames(HKEY_LOCAL_MACHINE, SimulatedTablet::kUserKey).empty());
}

TEST_F(Settings, WhatIsNoFourByteNumberLeavesTheDefault) {
  const uint8_t text[] = {'8', 0, '0', 0, 0, 0};
  machine.SetRegistryValue(HKEY_CURRENT_USER, SimulatedTablet::kUserKey, u"BattLowPercentage", REG_SZ, text);
  const uint8_t fourByteText[] = {'7', 0, 0, 0};  // the type is not looked at
  machine.SetRegistryValue(HKEY_CURRENT_USER, SimulatedTablet::kUserKey, u"BattCritPercentage", REG_SZ,
                           fourByteText);
  SetUserValue(u"EnableWLAN", 2);
  SetUserValue(u"WakeupDelay", -5);
  Start();
  EXPECT_EQ(UserValue(u"BattLowPercentage"), 10U);
  EXPECT_EQ(UserValue(u"BattCritPercentage"), 0x37U);
  EXPECT_EQ(UserValue(u"EnableWLAN"), 0U);
  EXPECT_EQ(UserValue(u"WakeupDelay"), static_cast<uint32_t>(-5));
}

TEST_F(Settings, SwitchClicksGiveTheCommandsUnlessTheyAreStored) {
  SetUserValue(u"SwClicks", 1);
  SetUserValue(u"Sw2CmdVal", 65);
  Start();
  EXPECT_EQ(UserValue(u"Sw1CmdVal"), static_cast<uint32_t>(-1));
  EXPECT_EQ(UserValue(u"Sw2CmdVal"), 65U);
  EXPECT_EQ(UserValue(u"SwClicks"), 1U);
}

TEST_F(Settings, LanguageIsCompletedForTheThreadAndStoredAsItWas) {
  SetUserValue(u"CurrentLangID", 0x10000 + 19);
  ASSERT_TRUE(tablet.StartAndSettle());
  const auto languages = New<pal::LanguageSet>();
  ASSERT_EQ(languages.size(), 1U);
  EXPECT_EQ(languages[0].language, 0x0413);
  EXPECT_EQ(UserValue(u"CurrentLangID"), 19U);
}

TEST_F(Settings, ALanguageChosenInTheMenuIsAppliedSavedAndShown) {
  Start();
  ASSERT_TRUE(tablet.Ask(WM_COMMAND, 40213));
  EXPECT_EQ(UserValue(u"CurrentLangID"), 0x0413U);
  ASSERT_TRUE(machine.Post(tablet.MainWindow(), WM_COMMAND, 128, 0));
  tablet.Advance(10ms);
  ASSERT_EQ(machine.OpenMessageBoxes().size(), 1U);
  EXPECT_TRUE(machine.OpenMessageBoxes()[0].text.starts_with(u"Sommige functies van het toestel"));
  EXPECT_EQ(machine.OpenMessageBoxes()[0].caption, u"Sarvik5");
  machine.AnswerMessageBox(IDNO);
  ASSERT_TRUE(tablet.Ask(WM_COMMAND, 40214));  // no such entry in the list
  EXPECT_EQ(UserValue(u"CurrentLangID"), 0x0413U);
}

TEST_F(Settings, ARegistryThatRefusesKeepsTheToolFromNothing) {
  machine.Fail("RegOpenKeyExW", 10, ERROR_ACCESS_DENIED);
  machine.Fail("RegCreateKeyExW", 10, ERROR_ACCESS_DENIED);
  SetUserValue(u"Sw1CmdVal", -1);
  Start();
  EXPECT_TRUE(pal::Select<pal::RegistryWrite>(tablet.Since(0)).empty());
  Press(simulator::Button::kSwitch1);
  EXPECT_EQ(New<pal::ForeignMessageSent>().size(), 1U);  // the default: a notification
}

TEST_F(Settings, TheMachinesPortNumberChoosesThePort) {
  machine.SetRegistryDword(HKEY_LOCAL_MACHINE, SimulatedTablet::kUserKey, u"PicPortNumber", 5);
  tablet.Start();
  tablet.Advance(5s);
  EXPECT_TRUE(New<pal::SerialOpened>().empty());
  EXPECT_NE(Log().find("StartPicComm . . .  failed to open port\r\n"), std::string::npos) << Log();
  EXPECT_EQ(machine.RegistryDword(HKEY_LOCAL_MACHINE, SimulatedTablet::kUserKey, u"PicPortNumber"), 5U);
}

}  // namespace
}  // namespace veltra
