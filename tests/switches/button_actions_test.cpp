// What a side button does, from the press to its effect.
#include "simulator/macro_plugin.h"
#include "tests/tool_test.h"

namespace veltra {
namespace {

using simulator::Button;
using simulator::SimulatedTablet;
using Texts = std::vector<std::string>;

class ButtonActions : public ToolTest {
 protected:
  ButtonActions() { SetUserValue(u"StartupDelay", 0); }

  // What the profile says of a button: 1 top short, 2 bottom short, 3 top long, 4 bottom long.
  void SetAction(int button, int command, int value, std::string_view text = {}) {
    profile_.append("[Button").append(std::to_string(button)).append("]\r\nBtCmd=");
    profile_.append(std::to_string(command)).append("\r\nBtCmdVal=").append(std::to_string(value));
    profile_.append("\r\nBtCmdText=").append(text).append("\r\n");
    machine.WriteFile(SimulatedTablet::kProfileFile, profile_);
  }
  void Hold(Button button, pal::Time time) {
    Press(button);
    tablet.Advance(time);
    Release(button);
  }
  // Everything that the short press of the top button does, in words.
  Texts ShortPress(Button button = Button::kTop) {
    mark = tablet.Mark();
    Hold(button, 100ms);
    Texts words;
    for (const pal::Effect& effect : tablet.Since(mark)) {
      const std::string text = pal::Describe(effect);
      const bool isPress = text.starts_with("notify") || text.starts_with("timer") || text == "awake";
      if (!isPress) words.push_back(text);
    }
    return words;
  }
  Texts DoAction(int command, int value, std::string_view text = {}) {
    SetAction(1, command, value, text);
    Start();
    return ShortPress();
  }

 private:
  std::string profile_;
};

TEST_F(ButtonActions, AKeyIsTypedByItsLowByte) {
  EXPECT_EQ(DoAction(1, 0x120), (Texts{"sound stopped", "key 0x20 down", "key 0x20 up"}));
}

TEST_F(ButtonActions, EveryCodeStopsTheSoundAndUnknownOnesDoNothingMore) {
  SetAction(2, 10, 0);
  SetAction(3, 11, 5);
  SetAction(4, -7, 5);
  EXPECT_EQ(DoAction(8, 3), Texts{"sound stopped"});
  EXPECT_EQ(ShortPress(Button::kBottom), Texts{"sound stopped"});
  Hold(Button::kTop, 2000ms);
  Hold(Button::kBottom, 2000ms);
  EXPECT_EQ(New<pal::SoundStopped>().size(), 3U);
}

TEST_F(ButtonActions, ShortAndLongPressesOfBothButtons) {
  for (int button = 1; button <= 4; ++button) SetAction(button, 1, 'A' + button - 1);
  Start();
  const struct {
    Button button;
    pal::Time held;
    uint8_t key;
    size_t beeps;
  } rows[] = {{Button::kTop, 1000ms, 'A', 0},
              {Button::kBottom, 1000ms, 'B', 0},
              {Button::kTop, 2000ms, 'C', 1},
              {Button::kBottom, 2000ms, 'D', 1}};
  for (const auto& row : rows) {
    mark = tablet.Mark();
    Hold(row.button, row.held);
    const auto effects = tablet.Since(mark);
    ASSERT_EQ(pal::Select<pal::KeyInput>(effects).size(), 2U) << row.key;
    EXPECT_EQ(pal::Select<pal::KeyInput>(effects)[0].virtualKey, row.key);
    EXPECT_EQ(pal::Select<pal::Beep>(effects).size(), row.beeps) << row.key;
  }
}

TEST_F(ButtonActions, WithoutAProfileTheShortPressesStepTheVolume) {
  SetUserValue(u"SpeakerVol", 60);
  Start();
  const auto volume = [this] { return *tablet.Ask(SimulatedTablet::kDeviceToolRequest, 20) & 0xFFFF; };
  ShortPress();
  EXPECT_EQ(volume(), 70);
  EXPECT_EQ(New<pal::SoundPlayed>().size(), 1U);
  ShortPress(Button::kBottom);
  ShortPress(Button::kBottom);
  EXPECT_EQ(volume(), 50);
  Hold(Button::kTop, 2000ms);
  EXPECT_EQ(volume(), 50);
}

class WaveFiles : public ButtonActions,
                  public testing::WithParamInterface<std::pair<const char*, const char16_t*>> {};

TEST_P(WaveFiles, AreLookedForBesideTheProgramUnlessThePathIsWhole) {
  const auto words = DoAction(2, -1, GetParam().first);
  const auto played = New<pal::SoundPlayed>();
  ASSERT_EQ(played.size(), 1U);
  EXPECT_EQ(played[0].file, GetParam().second);
  EXPECT_EQ(played[0].flags, 0x20001U);
  EXPECT_EQ(words.front(), "sound stopped");
}

INSTANTIATE_TEST_SUITE_P(Paths, WaveFiles,
                         testing::Values(std::pair("bell.wav", u"C:\\Program Files\\Veltra\\bell.wav"),
                                         std::pair("D:\\bell.wav", u"D:\\bell.wav"),
                                         std::pair("\\\\server\\sounds\\bell.wav",
                                                   u"\\\\server\\sounds\\bell.wav"),
                                         std::pair("\\bell.wav", u"C:\\Program Files\\Veltra\\\\bell.wav"),
                                         std::pair("D:bell.wav", u"C:\\Program Files\\Veltra\\D:bell.wav"),
                                         std::pair("x", u"C:\\Program Files\\Veltra\\x")));

TEST_F(ButtonActions, AnEmptyPathPlaysAndStartsNothing) {
  SetAction(2, 3, -1);
  EXPECT_EQ(DoAction(2, -1), Texts{"sound stopped"});
  EXPECT_EQ(ShortPress(Button::kBottom), Texts{"sound stopped"});
}

TEST_F(ButtonActions, AProgramStartsInItsFolder) {
  SetAction(2, 3, -1, "C:\\Tools\\Speech\\talk.exe");
  EXPECT_EQ(DoAction(3, -1, "notepad.exe"), (Texts{"sound stopped", "run notepad.exe"}));
  EXPECT_EQ(ShortPress(Button::kBottom), (Texts{"sound stopped", "run talk.exe"}));
  const auto executed = pal::Select<pal::ProgramExecuted>(tablet.Since(0));
  ASSERT_EQ(executed.size(), 2U);
  EXPECT_EQ(executed[0].file, u"notepad.exe");
  EXPECT_EQ(executed[0].directory, u"");
  EXPECT_EQ(executed[0].show, SW_SHOWNORMAL);
  EXPECT_EQ(executed[1].file, u"C:\\Tools\\Speech\\talk.exe");
  EXPECT_EQ(executed[1].directory, u"C:\\Tools\\Speech");
  EXPECT_EQ(executed[1].verb, u"");
  EXPECT_EQ(executed[1].parameters, u"");
}

TEST_F(ButtonActions, A32BitToolOn64BitsStartsProgramsWithTheRealSystemDirectory) {
  machine.SetWow64(true);
  EXPECT_EQ(DoAction(3, -1, "C:\\a.exe"),
            (Texts{"sound stopped", "system directory real", "run a.exe", "system directory redirected"}));
  machine.Fail("Wow64EnableWow64FsRedirection", 1, ERROR_INVALID_FUNCTION);
  EXPECT_EQ(ShortPress(), Texts{"sound stopped"});
}

TEST_F(ButtonActions, CommandsGoToTheApplicationThatRuns) {
  SetAction(1, 5, -2);
  SetAction(2, 6, 12);
  SetAction(3, 7, 13);
  SetAction(4, 9, -1, "c7");
  Start();
  const auto pressAll = [this] {
    mark = tablet.Mark();
    Hold(Button::kTop, 100ms);
    Hold(Button::kBottom, 100ms);
    Hold(Button::kTop, 2000ms);
    Hold(Button::kBottom, 2000ms);
    Texts words;
    for (const auto& sent : New<pal::ForeignMessageSent>())
      if (sent.className != u"*") words.push_back(pal::Describe({pal::Time(0), sent}));
    return words;
  };
  EXPECT_EQ(pressAll(), Texts());
  for (const char* application : {"Talk Builder 4 Class", "PageVoice", "Wendle"})
    tablet.TheDesk().Open(application);
  EXPECT_EQ(pressAll(),
            (Texts{"data 1703 to Talk Builder 4 Class: FE FF FF FF", "message 0x805B to PageVoice 12 0",
                   "message 0x8049 to Wendle 13 0", "data 1704 to Talk Builder 4 Class: 63 00 37 00"}));
}

TEST_F(ButtonActions, SideButtonsDoNotLookForTheApplicationsThatTakeTheSwitches) {
  SetAction(1, 1, VK_RETURN);
  Start();
  tablet.TheDesk().Open("Talk Builder");
  tablet.TheDesk().Open("Lexora");
  EXPECT_EQ(ShortPress(), (Texts{"sound stopped", "key 0x0D down", "key 0x0D up"}));
}

// ---- macros -------------------------------------------------------------------------------------------------

TEST_F(ButtonActions, AMacroIsRunByThePlugIn) {
  EXPECT_EQ(
      DoAction(0, -1, "caf\xE9{Enter}{Ctrl+S 2}"),
      (Texts{"sound stopped", "macro types caf\xC3\xA9", "macro presses 13", "macro presses 17+83 2 times"}));
}

TEST_F(ButtonActions, AMacroWithAMistakeDoesNothing) {
  EXPECT_EQ(DoAction(0, -1, "Hello{Entr}"), (Texts{"sound stopped", "macro refused at 6"}));
}

// The letters wait in the queue while a macro pauses; none is lost.
TEST_F(ButtonActions, APressDuringAPauseOfAMacroComesAfterIt) {
  SetAction(1, 0, -1, "a{Pause 1000}b");
  SetAction(2, 1, VK_RETURN);
  Start();
  mark = tablet.Mark();
  Hold(Button::kTop, 100ms);
  Hold(Button::kBottom, 100ms);
  tablet.Advance(2s);
  Texts words;
  for (const pal::Effect& effect : tablet.Since(mark))
    if (const std::string text = pal::Describe(effect); text.starts_with("macro") || text.starts_with("key"))
      words.push_back(text);
  EXPECT_EQ(words,
            (Texts{"macro types a", "macro waits 1000 ms", "macro types b", "key 0x0D down", "key 0x0D up"}));
}

TEST_F(ButtonActions, WithoutAPlugInAMacroDoesNothing) {
  tablet.TheDesk().Remove(simulator::Library::kEnglishMacros);
  EXPECT_EQ(DoAction(0, -1, "Hello"), Texts{"sound stopped"});
}

std::vector<std::u16string> Names(const std::vector<pal::Effect>& effects) {
  std::vector<std::u16string> names;
  const auto add = [&names](const std::u16string& path, const char16_t* what) {
    const std::u16string name = path.substr(path.rfind(u'\\') + 1);
    if (name.starts_with(u"macm")) names.push_back(what + name);
  };
  for (const pal::Effect& effect : effects) {
    if (const auto* loaded = std::get_if<pal::ModuleLoaded>(&effect.detail)) add(loaded->path, u"+");
    if (const auto* freed = std::get_if<pal::ModuleFreed>(&effect.detail)) add(freed->path, u"-");
  }
  return names;
}

TEST_F(ButtonActions, ThePlugInFollowsTheLanguage) {
  constexpr WPARAM kChooseEnglish = 40212;
  constexpr WPARAM kChooseDutch = 40213;
  using Loaded = std::vector<std::u16string>;
  SetUserValue(u"CurrentLangID", 0x0413);
  Start();
  EXPECT_EQ(Names(tablet.Since(0)), Loaded{u"+macm_Nederlands.dll"});
  tablet.Ask(WM_COMMAND, kChooseEnglish);
  EXPECT_EQ(Names(tablet.Since(mark)), (Loaded{u"-macm_Nederlands.dll", u"+macm_English.dll"}));
  tablet.TheDesk().Remove(simulator::Library::kDutchMacros);
  mark = tablet.Mark();
  tablet.Ask(WM_COMMAND, kChooseDutch);
  EXPECT_EQ(Names(tablet.Since(mark)), (Loaded{u"-macm_English.dll", u"+macm_English.dll"}));
  mark = tablet.Mark();
  ASSERT_TRUE(tablet.Quit());
  EXPECT_EQ(Names(tablet.Since(mark)), Loaded{u"-macm_English.dll"});
  EXPECT_EQ(machine.CountOpen("module"), 0);
}

}  // namespace
}  // namespace veltra
