#include <shellapi.h>

#include "tests/tool_test.h"

namespace veltra {
namespace {

constexpr UINT kPowerIcon = 1977;
constexpr UINT kToolIcon = 1978;

class Tray : public ToolTest {
 protected:
  pal::TrayIcon Power() { return machine.FindTrayIcon(kPowerIcon).value_or(pal::TrayIcon()); }
  pal::TrayIcon ToolIcon() { return machine.FindTrayIcon(kToolIcon).value_or(pal::TrayIcon()); }
  void Report(std::string_view text) {
    tablet.Pic().SendText(text);
    tablet.Advance(20ms);
  }
  void ReportCapacity(int percent) {
    char text[32];
    std::snprintf(text, sizeof text, "BatteryState=0x%02X", static_cast<unsigned>(percent));
    Report(text);
  }
  void AwaitPoll() { tablet.Advance(3s); }
  // Opens the menu of an icon and gives its items.
  std::vector<pal::MenuItem> OpenMenu(UINT icon) {
    EXPECT_TRUE(machine.RightClickTrayIcon(icon));
    tablet.Advance(10ms);
    return machine.OpenMenu().value_or(std::vector<pal::MenuItem>());
  }
};

TEST_F(Tray, BothIconsStandFromTheStartToTheEnd) {
  tablet.Start();
  tablet.Advance(1s);  // the tool still waits its start-up delay
  EXPECT_EQ(Power().picture, 156);
  EXPECT_EQ(Power().tooltip, u"Sarvik5");
  EXPECT_EQ(ToolIcon().picture, 170);
  EXPECT_EQ(ToolIcon().tooltip, u"Sarvik5");
  tablet.Advance(10s);
  EXPECT_TRUE(tablet.Quit());
  EXPECT_TRUE(machine.TrayIcons().empty());
}

TEST_F(Tray, ThePowerIconFollowsBatteryAndAdapter) {
  struct Row {
    const char* adapter;
    const char* battery;
    int capacity;
    int picture;
    std::u16string tooltip;
  };
  const Row rows[] = {
      {"0", "1", 100, 156, u"100% remaining"},
      {"0", "1", 66, 156, u"66% remaining"},
      {"0", "1", 65, 157, u"65% remaining"},
      {"0", "1", 33, 157, u"33% remaining"},
      {"0", "1", 32, 158, u"32% remaining"},
      {"1", "1", 4, 168, u"4% remaining (charging)"},
      {"1", "1", 99, 168, u"99% remaining (charging)"},
      {"1", "1", 100, 159, u"AC power"},
      {"1", "0", 40, 159, u"AC power"},
      {"0", "0", 40, 157, u"40% remaining"},
  };
  SetUserValue(u"BattCrit", 0);
  SetUserValue(u"BattLow", 0);
  Start();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.capacity);
    Report(std::string("AdapterPresent=").append(row.adapter));
    Report(std::string("BatteryPresent=").append(row.battery));
    ReportCapacity(row.capacity);
    AwaitPoll();
    EXPECT_EQ(Power().picture, row.picture);
    EXPECT_EQ(Power().tooltip, row.tooltip);
  }
  for (const auto& [capacity, picture] : {std::pair(5, 158), std::pair(4, 160), std::pair(0, 160)}) {
    ReportCapacity(capacity);
    AwaitPoll();
    EXPECT_EQ(Power().picture, picture) << capacity;
  }
}

TEST_F(Tray, WhatStaysTheSameIsNotSentAgain) {
  SetUserValue(u"EnableFlightMode", 1);
  Start();
  AwaitPoll();
  New<pal::TrayChange>();
  tablet.Ask(simulator::SimulatedTablet::kDeviceToolRequest, 3);  // the mobile phone, refused with a balloon
  auto changes = New<pal::TrayChange>();
  ASSERT_EQ(changes.size(), 1U);
  EXPECT_FALSE(changes[0].tooltip);
  EXPECT_FALSE(changes[0].picture);
  ASSERT_TRUE(changes[0].balloon);
  EXPECT_EQ(changes[0].balloon->title, u"Sarvik5");
  EXPECT_EQ(changes[0].balloon->text, u"Flight mode is active");
  EXPECT_EQ(changes[0].balloon->flags, static_cast<uint32_t>(NIIF_WARNING));
  EXPECT_EQ(changes[0].balloon->timeoutMs, 10000U);
  tablet.Advance(30s);
  EXPECT_TRUE(New<pal::TrayChange>().empty());
  ReportCapacity(51);
  AwaitPoll();
  changes = New<pal::TrayChange>();
  ASSERT_EQ(changes.size(), 1U);
  EXPECT_TRUE(changes[0].tooltip);
  EXPECT_FALSE(changes[0].picture);  // the same one
}

TEST_F(Tray, AfterTheShellHasRestartedTheIconsComeAsTheyBegan) {
  Start();
  ReportCapacity(40);
  AwaitPoll();
  EXPECT_EQ(Power().picture, 157);
  machine.RestartShell();
  tablet.Advance(30s);
  EXPECT_EQ(Power().picture, 156);
  EXPECT_EQ(Power().tooltip, u"Sarvik5");
  EXPECT_EQ(ToolIcon().picture, 170);
  ReportCapacity(39);
  AwaitPoll();
  EXPECT_EQ(Power().tooltip, u"39% remaining");
  EXPECT_EQ(Power().picture, 156);  // until one comes that differs from the last one sent
}

TEST_F(Tray, WithoutAShellAtTheStartTheIconsComeWithItsFirstBatteryCheck) {
  machine.StopShell();
  Start();
  tablet.Advance(30s);
  EXPECT_TRUE(machine.TrayIcons().empty());
  machine.Fail("RegisterWindowMessageW", 1, ERROR_NOT_ENOUGH_MEMORY);  // of nobody
  machine.StartShell();
  AwaitPoll();
  EXPECT_EQ(Power().picture, 157);
  EXPECT_EQ(Power().tooltip, u"50% remaining");
  EXPECT_EQ(ToolIcon().picture, 170);
}

TEST_F(Tray, AnIconThatTheShellRefusedIsTriedUntilItStands) {
  machine.Fail("Shell_NotifyIconW", 4, ERROR_TIMEOUT);  // both, and both again
  Start();
  EXPECT_TRUE(machine.TrayIcons().empty());
  AwaitPoll();
  AwaitPoll();
  EXPECT_EQ(Power().tooltip, u"50% remaining");
  EXPECT_EQ(machine.TrayIcons().size(), 2U);
}

TEST_F(Tray, TenThousandChangesHoldAHandfulOfPictures) {
  SetUserValue(u"BattLow", 0);
  Start();
  for (int n = 0; n < 10'000; ++n) {
    tablet.Pic().SendText(n % 2 ? "BatteryState=0x10" : "BatteryState=0x30");
    AwaitPoll();
  }
  EXPECT_GE(New<pal::TrayChange>().size(), 9'999U);
  EXPECT_LE(machine.CountOpen("icon"), 4);
  EXPECT_TRUE(tablet.Quit());
  EXPECT_EQ(machine.CountOpen("icon"), 0);
}

// ---- menus ------------------------------------------------------------------------------------------------

TEST_F(Tray, TheToolsMenuOffersTheLanguages) {
  Start();
  std::vector<pal::MenuItem> menu = OpenMenu(kToolIcon);
  ASSERT_EQ(menu.size(), 5U);
  EXPECT_EQ(menu[0].text, u"&Options");
  EXPECT_EQ(menu[0].command, 40211U);
  EXPECT_TRUE(menu[0].isDefault);
  EXPECT_EQ(menu[2].text, u"Choose language");
  ASSERT_EQ(menu[2].popup.size(), 2U);
  EXPECT_EQ(menu[2].popup[0].text, u"English");
  EXPECT_TRUE(menu[2].popup[0].isChecked);
  EXPECT_EQ(menu[2].popup[1].text, u"Nederlands");
  EXPECT_FALSE(menu[2].popup[1].isChecked);
  EXPECT_EQ(menu[4].text, u"&Close");
  EXPECT_EQ(machine.ForegroundWindow(), tablet.MainWindow());

  EXPECT_TRUE(machine.ChooseMenuItem(u"Nederlands"));
  tablet.Advance(10ms);
  EXPECT_EQ(UserValue(u"CurrentLangID"), 0x0413U);
  menu = OpenMenu(kToolIcon);
  ASSERT_EQ(menu.size(), 5U);
  EXPECT_EQ(menu[0].text, u"&Opties");
  EXPECT_EQ(menu[2].text, u"Kies taal");
  EXPECT_TRUE(menu[2].popup[1].isChecked);
  EXPECT_TRUE(machine.DismissMenu());
  menu = OpenMenu(kPowerIcon);
  ASSERT_EQ(menu.size(), 4U);
  EXPECT_EQ(menu[0].text, u"Open &batterijstatus");
  EXPECT_EQ(menu[1].text, u"Batterij-&info");
  EXPECT_EQ(menu[3].text, u"Slui&ten");
  EXPECT_TRUE(machine.DismissMenu());
  tablet.Advance(10ms);
  EXPECT_EQ(machine.CountOpen("menu"), 0);
  AwaitPoll();
  EXPECT_EQ(Power().tooltip, u"50% resterend");  // at once, without a new level
}

TEST_F(Tray, AMenuThatIsOpenHoldsNothingUp) {
  SetUserValue(u"Sw1CmdVal", -1);
  Start();
  OpenMenu(kPowerIcon);
  New<pal::MouseInput>();
  Press(simulator::Button::kSwitch1);
  EXPECT_EQ(New<pal::MouseInput>().size(), 1U);
  EXPECT_TRUE(machine.ChooseMenuCommand(128));
  tablet.Advance(10ms);
  ASSERT_EQ(machine.OpenMessageBoxes().size(), 1U);
  machine.AnswerMessageBox(IDYES);
  tablet.Advance(3s);
  EXPECT_EQ(machine.ExitCode(), 0);
}

}  // namespace
}  // namespace veltra
