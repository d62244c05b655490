// What a story cannot say of the tray icons: how a balloon and a menu are asked for, and what stays open.
#include <shellapi.h>

#include "tests/tool_test.h"

namespace veltra {
namespace {

class Tray : public ToolTest {};

TEST_F(Tray, ABalloonWarnsForTenSecondsAndChangesNothingElse) {
  SetUserValue(u"EnableFlightMode", 1);
  Start();
  tablet.Advance(3s);
  New<pal::TrayChange>();
  tablet.Ask(simulator::SimulatedTablet::kDeviceToolRequest, 3);  // the mobile phone
  const auto changes = New<pal::TrayChange>();
  ASSERT_EQ(changes.size(), 1U);
  EXPECT_FALSE(changes[0].tooltip);
  EXPECT_FALSE(changes[0].picture);
  ASSERT_TRUE(changes[0].balloon);
  EXPECT_EQ(changes[0].balloon->flags, static_cast<uint32_t>(NIIF_WARNING));
  EXPECT_EQ(changes[0].balloon->timeoutMs, 10000U);
}

TEST_F(Tray, MenusOpenAtTheCursorAboveAndLeftOfIt) {
  Start();
  for (const UINT icon : {1977U, 1978U}) {
    EXPECT_TRUE(machine.tray.RightClick(icon));
    tablet.Advance(10ms);
    const auto menus = New<pal::MenuShown>();
    ASSERT_EQ(menus.size(), 1U);
    EXPECT_EQ(menus[0].flags, static_cast<uint32_t>(TPM_RIGHTALIGN | TPM_BOTTOMALIGN | TPM_RIGHTBUTTON));
    EXPECT_EQ(menus[0].x, machine.desktop.cursor.x);
    EXPECT_EQ(menus[0].y, machine.desktop.cursor.y);
    EXPECT_EQ(menus[0].items[0].command, icon == 1977 ? 127U : 40211U);
    EXPECT_EQ(menus[0].items[0].text, icon == 1977 ? u"Open &Power Meter" : u"&Options");
    EXPECT_TRUE(machine.menus.Dismiss());
    tablet.Advance(10ms);
    EXPECT_EQ(machine.CountOpen("menu"), 0);
  }
}

TEST_F(Tray, ManyChangesHoldAHandfulOfPictures) {
  SetUserValue(u"BattLow", 0);
  Start();
  for (int n = 0; n < 100; ++n) {
    tablet.Pic().SendText(n % 2 ? "BatteryState=0x10" : "BatteryState=0x30");
    tablet.Advance(3s);
  }
  EXPECT_GE(New<pal::TrayChange>().size(), 99U);
  EXPECT_LE(machine.CountOpen("icon"), 4);
}

}  // namespace
}  // namespace veltra
