// How effects read, for people and in traces.
#include "pal/effects.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <mmsystem.h>

namespace {

using namespace pal;

TEST(Effects, OneShortWordingForEach) {
  struct Row {
    EffectDetail detail;
    std::string words;
  };
  const Row rows[] = {
      {DebugOutput{u"OnDeviceChange 00000007\r\n"}, "debug OnDeviceChange 00000007"},
      {RegistryWrite{u"HKEY_CURRENT_USER\\K", u"Sw1CmdVal", REG_DWORD, {0xFF, 0xFF, 0xFF, 0xFF}},
       "registry Sw1CmdVal = -1"},
      {RegistryWrite{u"K", u"Name", REG_SZ, {'a', 0, 0xE9, 0, 0, 0}}, "registry Name = \"a\xC3\xA9\""},
      {RegistryWrite{u"K", u"", 3, {1, 2}}, "registry (unnamed) = 01 02"},
      {FileWrite{u"C:\\x\\DevLog.txt", "a\tb\xE9\r\n"}, "file DevLog.txt: a\\tb\xC3\xA9"},
      {SerialOpened{2}, "serial COM2 opened"},
      {SerialClosed{2}, "serial COM2 closed"},
      {SerialWrite{2, {0x55, 0x55, 0x0A, 0x52}}, "serial COM2 55 55 0A 52"},
      {MouseInput{MOUSEEVENTF_LEFTDOWN, 0, 0, 0}, "mouse left down"},
      {MouseInput{MOUSEEVENTF_RIGHTUP, 0, 0, 0}, "mouse right up"},
      {MouseInput{MOUSEEVENTF_MOVE, 0, -1, 0}, "mouse move 0 -1"},
      {KeyInput{VK_ESCAPE, 1, KEYEVENTF_KEYUP}, "key 0x1B up"},
      {KeyInput{VK_LEFT, 0x4B, KEYEVENTF_EXTENDEDKEY}, "key 0x25 down extended"},
      {ExecutionState{3}, "awake"},
      {ExecutionState{ES_CONTINUOUS}, "may sleep"},
      {SessionHeld{u"an update runs"}, "session held: an update runs"},
      {SessionHeld{}, "session may end"},
      {Beep{MB_OK}, "beep"},
      {BoxShown{u"I2C failed", u"Error", MB_OK}, "box \"Error\": I2C failed"},
      {BoxAnswered{IDYES}, "answer yes"},
      {ForeignMessageSent{u"Talk Builder", 0x8064, 0, 68, 0, {}}, "message 0x8064 to Talk Builder 0 68"},
      {ForeignMessageSent{u"*", 0xC000, 1, -1, 0, {}}, "notify 0xC000 1 -1"},
      {ForeignMessageSent{u"Lexora", WM_COPYDATA, 5, 0, 9, {0x41, 0x00}}, "data 9 to Lexora: 41 00"},
      {TimerSet{10, 30000}, "timer 10 set 30000 ms"},
      {TimerKilled{10}, "timer 10 killed"},
      {LanguageSet{0x0413}, "language 0x0413"},
      {ModuleLoaded{u"C:\\x\\keapi.dll"}, "library keapi.dll loaded"},
      {ModuleFreed{u"C:\\x\\keapi.dll"}, "library keapi.dll freed"},
      {DeviceCall{"joystick", "button 1 down"}, "joystick button 1 down"},
      {TrayChange{TrayChange::Action::kAdded, 1978, 170, u"Model", {}},
       "tray 1978 added picture 170 tooltip \"Model\""},
      {TrayChange{TrayChange::Action::kChanged, 1977, {}, {}, TrayBalloon{u"Model", u"Low.", 2, 10000}},
       "tray 1977 balloon \"Model\": Low."},
      {MenuChosen{40211, u"&Options\tF2"}, "chosen 40211 Options"},
      {MenuChosen{}, "menu closed"},
      {SoundPlayed{163, u"", SND_RESOURCE | SND_ASYNC}, "sound 163"},
      {SoundStopped{}, "sound stopped"},
      {PlaybackLevel{90}, "playback level 90 %"},
      {PlaybackMute{false}, "playback not muted"},
      {ForegroundSet{u"Sarvik5"}, "foreground Sarvik5"},
      {ProgramStarted{u"\"a.exe\" -s"}, "program starts: \"a.exe\" -s"},
      {ProgramEnded{6}, "program ends with 6"},
  };
  for (const Row& row : rows) EXPECT_EQ(Describe({Time(0), row.detail}), row.words);
}

TEST(Effects, TracesAreJson) {
  EXPECT_EQ(ToJson({Time(1500), MouseInput{MOUSEEVENTF_LEFTDOWN, 0, 0, 0}}),
            "{\"t_us\":1500,\"kind\":\"mouse\",\"flags\":2,\"dx\":0,\"dy\":0,\"data\":0,\"text\":\"mouse "
            "left down\"}");
  EXPECT_EQ(ToJson({Time(0), BoxShown{u"a \"b\"\n\\", u"\u00e9", 0}}),
            "{\"t_us\":0,\"kind\":\"box\",\"caption\":\"\xC3\xA9\",\"message\":\"a "
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
  EXPECT_EQ(
      ToJson({Time(0), TrayChange{TrayChange::Action::kChanged, 1977, 157, u"65%", {}}}),
      "{\"t_us\":0,\"kind\":\"tray\",\"id\":1977,\"action\":\"changed\",\"picture\":157,\"tooltip\":\"65%\","
      "\"text\":\"tray 1977 picture 157 tooltip \\\"65%\\\"\"}");
  // Bytes that are no text at all still give a line of JSON.
  EXPECT_EQ(ToJson({Time(0), FileWrite{u"C:\\f", "\xFF"}}),
            "{\"t_us\":0,\"kind\":\"file\",\"path\":\"C:\\\\f\",\"bytes\":\"\xC3\xBF\",\"text\":\"file f: "
            "\xC3\xBF\"}");
}

}  // namespace
