#include "power/alarm_decision.h"

#include <gtest/gtest.h>
#include <mmsystem.h>

#include "power/battery_status.h"
#include "tests/dialog_test.h"

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

class Battery : public DialogTest {
 protected:
  void Report(int percent) {
    char text[32];
    std::snprintf(text, sizeof text, "BatteryState=0x%02X", static_cast<unsigned>(percent));
    tablet.Pic().SendText(text);
    tablet.Advance(20ms);
  }
  // Lets the tool look at the battery twice. What it then shows: the icon and its tooltip, the power meter's
  // picture.
  void ExpectShown(const std::u16string& tooltip, int picture, int meter) {
    tablet.Advance(7s);
    const pal::TrayIcon icon = machine.tray.Find(kPowerIcon).value_or(pal::TrayIcon());
    EXPECT_EQ(icon.tooltip, tooltip);
    EXPECT_EQ(icon.picture, picture);
    EXPECT_EQ(person::Look(IDP_ICON).icon, meter);
    const bool charges = tooltip.ends_with(u"(charging)");
    const bool isMains = charges || tooltip == u"AC power";
    std::u16string remaining = tooltip;
    if (const size_t word = remaining.find(u" remaining"); word != remaining.npos) remaining.erase(word, 10);
    if (remaining != u"AC power") {
      EXPECT_EQ(person::Look(IDP_REMAINING).text, remaining);
    }
    EXPECT_EQ(person::Look(IDP_SOURCE).text, isMains ? u"AC power" : u"Batteries");
  }
  Texts Warnings() {
    Texts warnings = Did({"sound", "tray 1977 balloon"});
    std::erase(warnings, "sound stopped");
    return warnings;
  }
};

// Both ends of each band, with the power meter open: unplugged, plugged and unplugged again.
TEST_F(Battery, TheAdapterComesAndGoesInEveryBand) {
  machine.Fail("ExitWindowsEx", 1000, ERROR_ACCESS_DENIED);
  Open(IDC_OPEN_POWER_METER);
  const Texts low = {"sound 160", "tray 1977 balloon \"Sarvik5\": Battery level is low. Please recharge."};
  const Texts critical = {"sound 161",
                          "tray 1977 balloon \"Sarvik5\": Battery level is critical. System will shutdown."};
  const struct {
    int percent;
    int picture;
    int meter;
    Texts warnings;
  } bands[] = {
      {0, IDI_BATTERY_EMPTY, IDI_METER_EMPTY, critical}, {4, IDI_BATTERY_EMPTY, IDI_METER_EMPTY, critical},
      {5, IDI_BATTERY_LOW, IDI_METER_LOW, critical},     {6, IDI_BATTERY_LOW, IDI_METER_LOW, low},
      {10, IDI_BATTERY_LOW, IDI_METER_LOW, low},         {11, IDI_BATTERY_LOW, IDI_METER_LOW, {}},
      {32, IDI_BATTERY_LOW, IDI_METER_LOW, {}},          {33, IDI_BATTERY_MEDIUM, IDI_METER_MEDIUM, {}},
      {65, IDI_BATTERY_MEDIUM, IDI_METER_MEDIUM, {}},    {66, IDI_BATTERY_HIGH, IDI_METER_HIGH, {}},
      {99, IDI_BATTERY_HIGH, IDI_METER_HIGH, {}},        {100, IDI_BATTERY_HIGH, IDI_METER_HIGH, {}}};
  for (const auto& band : bands) {
    SCOPED_TRACE(band.percent);
    const std::string digits = std::to_string(band.percent);
    const std::u16string left = std::u16string(digits.begin(), digits.end()) + u"% remaining";
    const bool isFull = band.percent == 100;
    tablet.Pic().battery.Plug(true);
    Report(band.percent);
    for (int round = 0; round < 2; ++round) {
      tablet.Pic().battery.Plug(false);
      Warnings();
      ExpectShown(left, band.picture, band.meter);
      Texts warnings = Warnings();
      if (warnings.size() > 2) warnings.resize(2);  // the critical ones repeat
      EXPECT_EQ(warnings, band.warnings);
      tablet.Pic().battery.Plug(true);
      tablet.Advance(8s);  // a warning that has begun goes to its end
      Warnings();
      ExpectShown(isFull ? u"AC power" : left + u" (charging)", isFull ? IDI_MAINS : IDI_CHARGING,
                  isFull ? IDI_METER_MAINS : IDI_METER_CHARGING);
      EXPECT_EQ(Warnings(), Texts());
    }
  }
  EXPECT_EQ(person::Look(IDP_REMAINING).text, u"100%");
  tablet.Pic().SendText("BatteryPresent=0");
  ExpectShown(u"AC power", IDI_MAINS, IDI_METER_MAINS);
  EXPECT_EQ(person::Look(IDP_REMAINING).text, u"n/a");
  for (const auto& sound : pal::Select<pal::SoundPlayed>(tablet.Since(0)))
    if (sound.resource == 160 || sound.resource == 161) {
      EXPECT_EQ(sound.flags, static_cast<uint32_t>(SND_RESOURCE | SND_ASYNC)) << sound.resource;
    }
}

TEST_F(Battery, ACheckThatBreaksOffIsFollowedByTheNext) {
  Start();
  bool isFirst = true;
  machine.OnEffect([&](const pal::Effect& effect) {
    const auto* sound = std::get_if<pal::SoundPlayed>(&effect.detail);
    if (sound && sound->resource == 160 && std::exchange(isFirst, false)) throw std::bad_alloc();
  });
  Report(9);
  tablet.Advance(7s);
  EXPECT_EQ(machine.tray.Find(kPowerIcon).value_or(pal::TrayIcon()).tooltip, u"9% remaining");
}

TEST_F(Battery, OnlyAChangedCapacityIsLogged) {
  SwitchDetailsOn();
  Start();
  for (const int percent : {70, 70, 69}) Report(percent);
  const std::string log = Log();
  size_t lines = 0;
  for (size_t at = 0; (at = log.find("Battery: Capacity", at)) != log.npos; ++at) ++lines;
  EXPECT_EQ(lines, 2U) << log;
}

}  // namespace
}  // namespace veltra
