#include "tests/dialog_test.h"

namespace veltra {
namespace {

class PowerMeter : public DialogTest {
 protected:
  void OpenMeter() { Open(IDC_OPEN_POWER_METER); }
  void Tell(std::string_view text) {
    tablet.Pic().SendText(text);
    tablet.Advance(1600ms);
  }
};

TEST_F(PowerMeter, FollowsThePowerSource) {
  SetUserValue(u"BattCrit", 0);  // else Windows is powered off on the way
  OpenMeter();
  const struct {
    std::string_view text;
    std::u16string_view source, remaining;
    int icon;
  } kSteps[] = {
      {"BatteryState=0x64", u"Batteries", u"100%", IDI_METER_HIGH},
      {"BatteryState=0x42", u"Batteries", u"66%", IDI_METER_HIGH},
      {"BatteryState=0x41", u"Batteries", u"65%", IDI_METER_MEDIUM},
      {"BatteryState=0x21", u"Batteries", u"33%", IDI_METER_MEDIUM},
      {"BatteryState=0x20", u"Batteries", u"32%", IDI_METER_LOW},
      {"BatteryState=0x05", u"Batteries", u"5%", IDI_METER_LOW},
      {"BatteryState=0x04", u"Batteries", u"4%", IDI_METER_EMPTY},
      {"AdapterPresent=1", u"AC power", u"4% (charging)", IDI_METER_CHARGING},
      {"BatteryState=0x64", u"AC power", u"100%", IDI_METER_MAINS},
      {"BatteryPresent=0", u"AC power", u"n/a", IDI_METER_MAINS},
  };
  for (const auto& step : kSteps) {
    Tell(step.text);
    EXPECT_EQ(person::Look(IDP_SOURCE).text, step.source) << step.text;
    EXPECT_EQ(person::Look(IDP_REMAINING).text, step.remaining) << step.text;
    EXPECT_EQ(person::Look(IDP_ICON).icon, step.icon) << step.text;
  }
}

TEST_F(PowerMeter, ShowsAndStoresTheAlarms) {
  SetUserValue(u"BattLowPercentage", 80);
  SetUserValue(u"BattCritPercentage", 6);
  SetUserValue(u"BattCrit", 0);
  OpenMeter();
  EXPECT_EQ(person::Look(IDP_LOW_LEVEL).position, 60);
  EXPECT_EQ(person::Look(IDP_LOW_LEVEL).lowest, 3);
  EXPECT_EQ(person::Look(IDP_LOW_LEVEL).ticks, (std::vector<int>{15, 30, 45}));
  EXPECT_EQ(person::Look(IDP_LOW_VALUE).text, u"80%");
  EXPECT_EQ(person::Look(IDP_CRITICAL_LEVEL).position, 6);
  EXPECT_EQ(person::Look(IDP_CRITICAL_LEVEL).highest, 30);
  EXPECT_FALSE(person::Look(IDP_CRITICAL_LEVEL).isEnabled);
  EXPECT_TRUE(person::Look(IDP_LOW).hasFocus);

  person::Press(IDP_CRITICAL);
  person::Drag(IDP_CRITICAL_LEVEL, 12);
  PressAndSettle(IDP_LOW);
  EXPECT_EQ(person::Look(IDP_CRITICAL_VALUE).text, u"12%");
  EXPECT_FALSE(person::Look(IDP_LOW_LEVEL).isEnabled);
  PressAndSettle(IDOK);
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(NewRequests(), std::vector<std::string>{"SetBatteryCritical=12"});
  EXPECT_EQ(UserValue(u"BattLowPercentage"), 60U);
  EXPECT_EQ(UserValue(u"BattCritPercentage"), 12U);
  EXPECT_EQ(UserValue(u"BattLow"), 0U);
  EXPECT_EQ(UserValue(u"BattCrit"), 1U);
}

TEST_F(PowerMeter, TheKeyboardMovesALevelToo) {
  SetUserValue(u"BattLowPercentage", 20);
  OpenMeter();
  for (const int key : {VK_TAB, VK_RIGHT, VK_RETURN}) {
    person::PressKey(key);
    Settle();
    if (key == VK_RIGHT) {
      EXPECT_EQ(person::Look(IDP_LOW_VALUE).text, u"21%");
    }
  }
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(UserValue(u"BattLowPercentage"), 21U);
}

TEST_F(PowerMeter, LeavesEverythingWhenGivenUp) {
  SetUserValue(u"BattLowPercentage", 20);
  Open(IDC_OPEN_POWER_METER);
  for (const WayOut way : {WayOut::kEscape, WayOut::kCloseBox, WayOut::kCancel}) {
    person::Drag(IDP_LOW_LEVEL, 40);
    person::Press(IDP_CRITICAL);
    Leave(way);
    EXPECT_FALSE(IsOpen());
    EXPECT_EQ(NewRequests(), std::vector<std::string>{});
    EXPECT_EQ(UserValue(u"BattLowPercentage"), 20U);
    EXPECT_EQ(UserValue(u"BattCrit"), 1U);
    OpenAgain(IDC_OPEN_POWER_METER);
    EXPECT_EQ(person::Look(IDP_LOW_LEVEL).position, 20);
  }
}

TEST_F(PowerMeter, OpensOnce) {
  OpenMeter();
  OpenAgain(IDC_OPEN_POWER_METER);
  EXPECT_TRUE(New<pal::DialogShown>().empty());
  Leave(WayOut::kEscape);
  EXPECT_FALSE(IsOpen());
  OpenAgain(IDC_OPEN_POWER_METER);
  EXPECT_EQ(New<pal::DialogShown>().size(), 1U);
}

// The tool is told to close while the dialog is open: the dialog goes with it.
TEST_F(PowerMeter, GoesWithTheTool) {
  OpenMeter();
  machine.Post(tablet.MainWindow(), WM_CLOSE, 0, 0);
  tablet.Advance(1s);
  EXPECT_TRUE(machine.ExitCode());
  OpenMeter();
  EXPECT_EQ(tablet.Ask(WM_ENDSESSION, TRUE), 0);
  tablet.Advance(5s);
  EXPECT_TRUE(machine.ExitCode());
}

}  // namespace
}  // namespace veltra
