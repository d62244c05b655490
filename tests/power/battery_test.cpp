#include "power/alarm_decision.h"

#include <gtest/gtest.h>
#include <mmsystem.h>

#include "pal/person.h"
#include "power/battery_status.h"
#include "resources/resource_ids.h"
#include "tests/tool_test.h"

namespace veltra {
namespace {

// ---- the decision -----------------------------------------------------------------------------------------

using enum BatteryAlarm;

// One reading after the other, each with the alarm that it gives.
struct Reading {
  int32_t capacity;
  BatteryAlarm alarm;
  bool onBattery = true;
};

struct Story {
  std::string name;
  AlarmSituation settings;
  std::vector<Reading> readings;
};

TEST(AlarmDecision, Stories) {
  const AlarmSituation usual = {
      .onBattery = true, .lowEnabled = true, .criticalEnabled = true, .lowLevel = 10, .criticalLevel = 5};
  AlarmSituation noCritical = usual;
  noCritical.criticalEnabled = false;
  AlarmSituation noLow = usual;
  noLow.lowEnabled = false;
  AlarmSituation negative = usual;
  negative.lowLevel = -3;
  negative.criticalLevel = -3;
  const Story stories[] = {
      {"each drop", usual, {{11, kNone}, {10, kLow}, {10, kNone}, {9, kLow}, {9, kNone}, {8, kLow}}},
      {"a rise arms again", usual, {{8, kLow}, {9, kNone}, {9, kLow}}},
      {"the adapter arms again", usual, {{9, kLow}, {9, kNone, false}, {9, kLow}}},
      {"above the level arms again", usual, {{9, kLow}, {11, kNone}, {9, kLow}}},
      {"critical repeats and keeps the memory",
       usual,
       {{6, kLow}, {5, kCritical}, {5, kCritical}, {6, kNone}}},
      {"without the critical alarm the low one goes on", noCritical, {{5, kLow}, {5, kNone}, {3, kLow}}},
      {"without the low alarm", noLow, {{10, kNone}, {6, kNone}, {5, kCritical}}},
      {"mains", usual, {{0, kNone, false}, {5, kNone, false}}},
      {"levels are signed", negative, {{0, kNone}}},
  };
  for (const Story& story : stories) {
    AlarmSituation now = story.settings;
    for (size_t n = 0; n < story.readings.size(); ++n) {
      now.capacity = story.readings[n].capacity;
      now.onBattery = story.readings[n].onBattery;
      const AlarmDecision decision = DecideAlarm(now);
      EXPECT_EQ(decision.alarm, story.readings[n].alarm) << story.name << ", reading " << n;
      now.lowAlarmLevel = decision.lowAlarmLevel;
    }
  }
}

TEST(BatteryDetails, KeepTheFirst255BytesOfTheLatestReply) {
  BatteryStatus battery;
  battery.SetDetail(3, ToBytes(std::string(300, 'x')));
  EXPECT_EQ(battery.GetDetail(3), WideText(255, 'x'));
  battery.SetDetail(3, ToBytes(std::string_view("ab\0c", 4)));
  EXPECT_EQ(battery.GetDetail(3), Widen("ab"));
}

// ---- on the tablet ----------------------------------------------------------------------------------------

constexpr UINT kPowerIcon = 1977;
constexpr int kLowSound = 160;
constexpr int kCriticalSound = 161;

class Battery : public ToolTest {
 protected:
  void ReportCapacity(int percent) {
    char text[32];
    std::snprintf(text, sizeof text, "BatteryState=0x%02X", static_cast<unsigned>(percent));
    tablet.Pic().SendText(text);
    tablet.Advance(20ms);
  }
  // The power icon's tooltip and picture.
  using Shown = std::pair<std::u16string, int>;
  Shown PowerIcon() {
    const auto icon = machine.FindTrayIcon(kPowerIcon).value_or(pal::TrayIcon());
    return {icon.tooltip, icon.picture};
  }
  std::vector<std::u16string> NewBalloons() {
    std::vector<std::u16string> texts;
    for (const auto& change : New<pal::TrayChange>())
      if (change.balloon) texts.push_back(change.balloon->text);
    return texts;
  }
};

TEST_F(Battery, TheLowAlarmSoundsAndShows) {
  Start();
  ReportCapacity(10);
  tablet.Advance(3s);
  const auto before = mark;
  const auto sounds = New<pal::SoundPlayed>();
  ASSERT_EQ(sounds.size(), 1U);
  EXPECT_EQ(sounds[0].resource, kLowSound);
  EXPECT_EQ(sounds[0].flags, static_cast<uint32_t>(SND_RESOURCE | SND_ASYNC));
  mark = before;
  EXPECT_EQ(NewBalloons(), std::vector<std::u16string>{u"Battery level is low. Please recharge."});
  tablet.Advance(30s);
  EXPECT_TRUE(New<pal::SoundPlayed>().empty());
}

TEST_F(Battery, TheCriticalAlarmPowersOffAndTheToolEnds) {
  Start();
  ReportCapacity(5);
  ASSERT_TRUE(
      machine.AdvanceUntil([&] { return !pal::Select<pal::SoundPlayed>(tablet.Since(mark)).empty(); }, 3s));
  tablet.Advance(3999ms);
  EXPECT_TRUE(pal::Select<pal::WindowsExit>(tablet.Since(mark)).empty());
  tablet.Advance(20ms);
  const auto exits = New<pal::WindowsExit>();
  ASSERT_EQ(exits.size(), 1U);
  EXPECT_EQ(exits[0].flags, 0x0CU);
  EXPECT_EQ(exits[0].reason, 0x6000AU);
  tablet.Advance(3s);
  EXPECT_EQ(machine.ExitCode(), 0);
  EXPECT_TRUE(machine.TrayIcons().empty());
}

TEST_F(Battery, ARefusedPowerOffIsTriedAgainAtEachCheck) {
  struct Refusal {
    const char* call;
    DWORD error;
  };
  for (const Refusal& refusal :
       {Refusal{"ExitWindowsEx", ERROR_ACCESS_DENIED}, Refusal{"OpenProcessToken", ERROR_ACCESS_DENIED},
        Refusal{"AdjustTokenPrivileges", ERROR_NOT_ALL_ASSIGNED}})
    machine.Fail(refusal.call, 1, refusal.error);
  Start();
  ReportCapacity(3);
  tablet.Advance(22s);  // three times 3 s and 4 s
  EXPECT_FALSE(machine.ExitCode());
  EXPECT_TRUE(pal::Select<pal::WindowsExit>(tablet.Since(mark)).empty());
  EXPECT_EQ(pal::Select<pal::SoundPlayed>(tablet.Since(mark)).size(), 3U);
  tablet.Advance(7s);
  EXPECT_EQ(New<pal::WindowsExit>().size(), 1U);
  EXPECT_EQ(machine.CountOpen("token"), 0);
}

TEST_F(Battery, APressDuringTheFourSecondsIsActedOnBehindThem) {
  SetUserValue(u"Sw1CmdVal", -1);
  machine.Fail("ExitWindowsEx", 1, ERROR_ACCESS_DENIED);
  Start();
  ReportCapacity(4);
  ASSERT_TRUE(
      machine.AdvanceUntil([&] { return !pal::Select<pal::SoundPlayed>(tablet.Since(mark)).empty(); }, 4s));
  Press(simulator::Button::kSwitch1);
  Release(simulator::Button::kSwitch1);
  tablet.Advance(3900ms);
  EXPECT_TRUE(pal::Select<pal::MouseInput>(tablet.Since(mark)).empty());
  tablet.Advance(100ms);
  EXPECT_EQ(New<pal::MouseInput>().size(), 2U);
}

TEST_F(Battery, AlarmsComeWhileABoxIsOpen) {
  Start();
  machine.Post(tablet.MainWindow(), WM_COMMAND, 40205, 0);
  tablet.Advance(10ms);
  ASSERT_EQ(machine.OpenMessageBoxes().size(), 1U);
  ReportCapacity(9);
  tablet.Advance(3s);
  EXPECT_EQ(NewBalloons().size(), 1U);
}

TEST_F(Battery, AlarmsComeWhileADialogIsOpen) {
  Start();
  for (const WPARAM command : {WPARAM{IDC_OPTIONS}, WPARAM{IDC_OPEN_POWER_METER}}) {
    machine.Post(tablet.MainWindow(), WM_COMMAND, command, 0);
    tablet.Advance(10ms);
    ASSERT_TRUE(pal::person::FrontDialog());
    ReportCapacity(9);
    tablet.Advance(3s);
    EXPECT_EQ(NewBalloons().size(), 1U);
    ReportCapacity(50);
    tablet.Advance(3s);
    pal::person::PressKey(VK_ESCAPE);
    tablet.Advance(10ms);
  }
  machine.Post(tablet.MainWindow(), WM_COMMAND, IDC_OPTIONS, 0);
  tablet.Advance(10ms);
  ReportCapacity(4);
  tablet.Advance(10s);  // powered off with the dialog open
  EXPECT_EQ(New<pal::WindowsExit>().size(), 1U);
  EXPECT_EQ(machine.ExitCode(), 0);
}

// Unplugged, plugged and unplugged again, at each level.
TEST_F(Battery, TheAdapterComesAndGoesAtEveryLevel) {
  machine.Fail("ExitWindowsEx", 1000, ERROR_ACCESS_DENIED);
  Start();
  for (int percent = 0; percent <= 100; ++percent) {
    const bool critical = percent <= 5;
    const bool low = percent <= 10 && !critical;
    const int picture = percent >= 66   ? IDI_BATTERY_HIGH
                        : percent >= 33 ? IDI_BATTERY_MEDIUM
                        : percent >= 5  ? IDI_BATTERY_LOW
                                        : IDI_BATTERY_EMPTY;
    const std::string digits = std::to_string(percent);
    const std::u16string left = std::u16string(digits.begin(), digits.end()) + u"% remaining";
    tablet.Pic().battery.Plug(true);
    ReportCapacity(percent);
    for (int round = 0; round < 2; ++round) {
      tablet.Pic().battery.Plug(false);
      tablet.Advance(20ms);
      mark = tablet.Mark();
      tablet.Advance(7s);
      const std::vector<std::u16string> warnings = NewBalloons();
      EXPECT_EQ(warnings.empty(), !critical && !low) << percent;
      if (critical) {
        EXPECT_EQ(warnings.front(), u"Battery level is critical. System will shutdown.") << percent;
      }
      if (low) {
        EXPECT_EQ(warnings, (std::vector<std::u16string>{u"Battery level is low. Please recharge."}))
            << percent;
      }
      EXPECT_EQ(PowerIcon(), (Shown{left, picture})) << percent;

      tablet.Pic().battery.Plug(true);
      tablet.Advance(8s);  // a warning that has begun goes to its end
      mark = tablet.Mark();
      tablet.Advance(7s);
      EXPECT_TRUE(NewBalloons().empty()) << percent;
      EXPECT_EQ(PowerIcon(), percent == 100 ? (Shown{u"AC power", IDI_MAINS})
                                            : (Shown{left + u" (charging)", IDI_CHARGING}))
          << percent;
    }
  }
}

TEST_F(Battery, OnlyAChangedCapacityIsLogged) {
  SwitchDetailsOn();
  Start();
  for (const int percent : {70, 70, 69}) ReportCapacity(percent);
  const std::string log = Log();
  size_t lines = 0;
  for (size_t at = 0; (at = log.find("Battery: Capacity", at)) != log.npos; ++at) ++lines;
  EXPECT_EQ(lines, 2U) << log;
}

TEST_F(Battery, ChecksRestFromSuspendToResume) {
  Start();
  tablet.SendPowerEvent(PBT_APMSUSPEND);
  ReportCapacity(9);
  tablet.Advance(60s);
  EXPECT_TRUE(New<pal::TrayChange>().empty());
  tablet.SendPowerEvent(PBT_APMRESUMEAUTOMATIC);
  tablet.Advance(6s);
  EXPECT_EQ(NewBalloons().size(), 1U);
}

TEST_F(Battery, TheDetailsAreAskedOnceAndShownAsTheyCame) {
  tablet.Pic().SetReplyDelay(20s);
  Start();
  machine.Post(tablet.MainWindow(), WM_COMMAND, 40205, 0);
  tablet.Advance(10ms);
  ASSERT_EQ(machine.OpenMessageBoxes().size(), 1U);
  EXPECT_TRUE(
      machine.OpenMessageBoxes()[0].text.starts_with(u"Manufacturer: \nManufacturer date: \nSerial: \n"));
  machine.AnswerMessageBox(IDOK);
  tablet.Pic().SetReplyDelay(2ms);
  tablet.Advance(30s);
  machine.Post(tablet.MainWindow(), WM_COMMAND, 40205, 0);
  tablet.Advance(10ms);
  ASSERT_EQ(machine.OpenMessageBoxes().size(), 1U);
  const pal::OpenMessageBox box = machine.OpenMessageBoxes()[0];
  EXPECT_EQ(box.caption, u"Sarvik5");
  EXPECT_EQ(box.type, static_cast<UINT>(MB_ICONINFORMATION));
  EXPECT_EQ(box.owner, tablet.MainWindow());
  EXPECT_EQ(box.text,
            u"Manufacturer: Nordcell\nManufacturer date: 2023-05-17\nSerial: 4711\nDevice name: NC-7S2P\n"
            u"Chemistry: LION\nTemperature: 2981\nVoltage: 11782\nCurrent: -1240\nRemaining capacity: 5160\n"
            u"Status: 00C0\nCycles: 37\nDesign capacity: 6800\nDesign voltage: 11100");
}

}  // namespace
}  // namespace veltra
