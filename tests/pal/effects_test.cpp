// How effects read, for people and in traces.
#include "pal/machine/effects.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <mmsystem.h>

namespace {

using namespace pal;

// Those that no scenario looks for.
TEST(Effects, OneShortWordingForEach) {
  struct Row {
    EffectDetail detail;
    std::string words;
  };
  const Row rows[] = {
      {RegistryWrite{u"K", u"Name", REG_SZ, {'a', 0, 0xE9, 0, 0, 0}}, "registry Name = \"a\xC3\xA9\""},
      {RegistryWrite{u"K", u"", 3, {1, 2}}, "registry (unnamed) = 01 02"},
      {RegistryOpened{u"HKEY_CURRENT_USER\\K", KEY_READ, true},
       "new registry key HKEY_CURRENT_USER\\K access 0x20019"},
      {FileWrite{u"C:\\x\\DevLog.txt", "a\tb\xE9\r\n"}, "file DevLog.txt: a\\tb\xC3\xA9"},
      {SerialPurged{2, 15}, "purged COM2 0xF"},
      {WindowPlaced{u"Options", 1, 2, 0, 0, true, SWP_NOSIZE}, "placed window \"Options\" topmost"},
      {ExecutionState{7}, "execution state 0x00000007"},
      {WindowsExit{1, 2}, "exit windows 0x01, reason 0x00002"},
      {LabelChanged{u"A", u"b\r\n\nc"}, "dialog \"A\": b c"},
      {FileBoxAnswered{}, "file box cancelled"},
      {ForegroundSet{u"Sarvik5"}, "foreground Sarvik5"},
      {KeyInput{VK_LEFT, 0x4B, KEYEVENTF_EXTENDEDKEY}, "key 0x25 down extended"},
      {EllipseDrawn{1, 2, 3, 4, 0xFF00}, "ellipse 1 2 3 4 colour 0x00FF00"},
      {MenuChosen{40211, u"&Options\tF2"}, "chosen 40211 Options"},
      {SoundPlayed{0, u"C:\\a.wav", SND_LOOP, true}, "sound C:\\a.wav (missing) again and again"},
  };
  for (const Row& row : rows) EXPECT_EQ(Describe({Time(0), row.detail}), row.words);
}

TEST(Effects, TracesAreJson) {
  EXPECT_EQ(ToJson({Time(1500), BoxShown{u"a \"b\"\n\\", u"\u00e9", 0}}),
            "{\"t_us\":1500,\"kind\":\"box\",\"caption\":\"\xC3\xA9\",\"message\":\"a "
            "\\\"b\\\"\\u000A\\\\\",\"type\":0,\"owner\":\"\","
            "\"text\":\"box \\\"\xC3\xA9\\\": a \\\"b\\\"\\\\n\\\\\"}");
  const MenuItem inner = {u"English", 40212, false, true, false, false, {}};
  const MenuShown menu = {{{u"&Options", 40211, false, false, false, true, {}},
                           {u"", 0, true, false, false, false, {}},
                           {u"Language", 0, false, false, false, false, {inner}}},
                          5,
                          6,
                          0x2A};
  EXPECT_EQ(ToJson({Time(0), menu}),
            "{\"t_us\":0,\"kind\":\"menu\",\"items\":[{\"text\":\"&Options\",\"command\":40211,\"default\":"
            "true},null,"
            "{\"text\":\"Language\",\"items\":[{\"text\":\"English\",\"command\":40212,\"checked\":true}]}],"
            "\"x\":5,"
            "\"y\":6,\"flags\":42,\"text\":\"menu Options (default) | - | Language > [English (checked)]\"}");
  // Bytes that are no text at all still give a line of JSON.
  EXPECT_EQ(ToJson({Time(0), FileWrite{u"C:\\f", "\xFF"}}),
            "{\"t_us\":0,\"kind\":\"file\",\"path\":\"C:\\\\f\",\"bytes\":\"\xC3\xBF\",\"text\":\"file f: "
            "\xC3\xBF\"}");
}

TEST(Effects, AreComparedWhole) {
  EXPECT_EQ((TimerSet{1, 2, u"a"}), (TimerSet{1, 2, u"a"}));
  EXPECT_FALSE((TimerSet{1, 2, u"a"} == TimerSet{1, 2, u"b"}));
  const TrayChange quiet = {TrayChange::Action::kChanged, 1, 2, 16, u"tip", {}};
  TrayChange loud = quiet;
  EXPECT_EQ(loud, quiet);
  loud.balloon = TrayBalloon{u"Model", u"Low.", 2, 10000};
  EXPECT_FALSE(loud == quiet);
}

}  // namespace
