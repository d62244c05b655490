#include <commctrl.h>

#include "tests/dialog_test.h"

namespace veltra {
namespace {

using PowerMeter = DialogTest;

TEST_F(PowerMeter, ShowsTheAlarmsAndCloses) {
  SetUserValue(u"BattLowPercentage", 80);
  SetUserValue(u"BattCritPercentage", 6);
  SetUserValue(u"BattCrit", 0);
  Open(IDC_OPEN_POWER_METER);
  const pal::ControlView low = person::Look(IDP_LOW_LEVEL);
  EXPECT_EQ((std::vector<int>{low.lowest, low.position, low.highest}), (std::vector<int>{3, 60, 60}));
  EXPECT_EQ(low.ticks, (std::vector<int>{15, 30, 45}));
  EXPECT_EQ(person::Look(IDP_LOW_VALUE).text, u"80%");
  const pal::ControlView critical = person::Look(IDP_CRITICAL_LEVEL);
  EXPECT_EQ((std::vector<int>{critical.lowest, critical.position, critical.highest}),
            (std::vector<int>{3, 6, 30}));
  EXPECT_FALSE(critical.isEnabled);
  EXPECT_TRUE(person::Look(IDP_LOW).hasFocus);
  machine.desktop.Post(person::FrontDialog()->window, WM_HSCROLL, MAKEWPARAM(TB_THUMBTRACK, 9), 0);
  Settle();
  EXPECT_EQ(person::Look(IDP_CRITICAL_VALUE).text, u"9%");

  bool isFirst = true;  // closing fails, and is tried again
  machine.OnEffect([&](const pal::Effect& effect) {
    if (std::get_if<pal::TimerKilled>(&effect.detail) && std::exchange(isFirst, false))
      throw std::bad_alloc();
  });
  Leave(WayOut::kCloseBox);
  EXPECT_FALSE(isFirst);
  EXPECT_FALSE(IsOpen());
}

}  // namespace
}  // namespace veltra
