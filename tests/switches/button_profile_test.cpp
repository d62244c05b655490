// Profile files, function tables and the macro editor, called as the options dialog calls them.
#include <gtest/gtest.h>

#include <functional>

#include "app/app_state.h"
#include "pal/machine.h"
#include "pal/private_profile.h"
#include "simulator/desk.h"
#include "simulator/macro_plugin.h"
#include "switches/button_profile.h"
#include "switches/function_tables.h"
#include "switches/macro_plugin.h"

namespace veltra {
namespace {

constexpr std::u16string_view kProfile = u"C:\\Users\\Public\\Documents\\Sarvik5\\curprofile.bpf";

class ProfileTest : public testing::Test {
 protected:
  // Runs as the tool, with a state of its own.
  void AsTool(std::function<void()> action) {
    machine_.StartProgram([action = std::move(action)] {
      GetAppState();
      action();
      DestroyAppState();
      return 0;
    });
    ASSERT_TRUE(
        machine_.AdvanceUntil([this] { return machine_.ExitCode().has_value(); }, std::chrono::minutes(1)));
  }
  void SaveText(const ButtonAction& action) {
    AsTool([&] {
      GetAppState().switches.buttonActions.fill(action);
      SaveProfile(CurrentProfilePath());
    });
  }
  ButtonAction Load(size_t index = 0, std::u16string_view path = kProfile) {
    ButtonAction action;
    AsTool([&] {
      LoadProfile(WideText(path));
      action = GetAppState().switches.buttonActions[index];
    });
    return action;
  }
  std::string File() { return machine_.ReadFile(kProfile).value_or("(none)"); }

  pal::Machine machine_;
  simulator::Desk desk_{machine_};
};

TEST_F(ProfileTest, AnActionOfEveryTypeComesBackAsItWas) {
  const WideText texts[] = {u"",
                            u"x",
                            WideText(330, u'a'),
                            WideText(387, u'b'),
                            WideText(1022, u'c'),
                            u"C:\\a=b;c\\d.wav",
                            u"say \"this\" now",
                            u"a  =  b",
                            u"[Button2]",
                            u"caf\xE9 \x20AC",
                            u"\x0416\x4E2D\xD83D\xDE00",
                            WideText(1022, u'\x0391')};
  for (int32_t type = 0; type <= 10; ++type) {
    const bool hasText = HasTextParameter(static_cast<ActionType>(type));
    for (const WideText& text : texts) {
      if (!hasText && !text.empty()) continue;
      const ButtonAction action = {type, hasText ? -1 : 17, text};
      SaveText(action);
      const ButtonAction loaded = Load(static_cast<size_t>(type) % 4);
      EXPECT_EQ(loaded.BtCmd, action.BtCmd);
      EXPECT_EQ(loaded.BtCmdVal, action.BtCmdVal);
      EXPECT_EQ(loaded.BtCmdText, text) << type << " " << text.size();
    }
  }
}

TEST_F(ProfileTest, ALongTextIsWrittenWholeAndReadUpToTheBuffer) {
  SaveText({0, -1, WideText(1100, u'z')});
  EXPECT_NE(File().find("BtCmdText=" + std::string(1100, 'z') + "\r\n"), std::string::npos);
  EXPECT_EQ(Load().BtCmdText, WideText(1022, u'z'));
}

// Windows takes blanks and one pair of quotes off a value when it reads it.
TEST_F(ProfileTest, BlanksAndQuotesAroundATextAreLostAsWindowsHasIt) {
  SaveText({0, -1, u"  two  "});
  EXPECT_EQ(Load().BtCmdText, u"two");
  SaveText({0, -1, u"\"said\""});
  EXPECT_EQ(Load().BtCmdText, u"said");
}

TEST_F(ProfileTest, TheFileIsPlainUnlessALetterNeedsMore) {
  AsTool([] {
    LoadProfile(CurrentProfilePath());
    SaveProfile(CurrentProfilePath());
  });
  EXPECT_EQ(File(),
            "[Button1]\r\nBtCmd=4\r\nBtCmdVal=0\r\nBtCmdText=\r\n[Button2]\r\nBtCmd=4\r\nBtCmdVal="
            "1\r\nBtCmdText=\r\n"
            "[Button3]\r\nBtCmd=10\r\nBtCmdVal=0\r\nBtCmdText=\r\n[Button4]\r\nBtCmd=10\r\nBtCmdVal="
            "0\r\nBtCmdText=\r\n");
  SaveText({2, -1, u"\xE9\x20AC.wav"});
  EXPECT_NE(File().find("BtCmdText=\xE9\x80.wav"), std::string::npos);
  machine_.WriteFile(kProfile, "[Other]\r\nname=caf\xE9\r\n" + File());
  SaveText({2, -1, u"\x0416.wav"});
  EXPECT_TRUE(File().starts_with("\xFF\xFE"));
  const std::u16string text = pal::DecodeProfile(File()).text;
  EXPECT_EQ(pal::FindProfileValue(text, u"Other", u"name"), u"caf\xE9");
  EXPECT_EQ(pal::FindProfileValue(text, u"Button4", u"BtCmdText"), u"\x0416.wav");
}

TEST_F(ProfileTest, WhatIsMissingHasItsDefaults) {
  const auto loadOver = [this](size_t index) {
    ButtonAction action;
    AsTool([&] {
      GetAppState().switches.buttonActions.fill({1, 2, u"kept"});
      LoadProfile(CurrentProfilePath());
      action = GetAppState().switches.buttonActions[index];
    });
    return action;
  };
  EXPECT_EQ(loadOver(1).BtCmd, 4);
  EXPECT_EQ(loadOver(1).BtCmdVal, 1);
  EXPECT_EQ(loadOver(2).BtCmd, 10);
  EXPECT_EQ(loadOver(2).BtCmdText, u"kept");
  machine_.WriteFile(kProfile, "[Button2]\r\nBtCmd=9\r\nBtCmdVal=-1\r\nBtCmdText=cell 7\r\n");
  EXPECT_EQ(loadOver(1).BtCmdText, u"cell 7");
  EXPECT_EQ(loadOver(1).BtCmdVal, -1);
  EXPECT_EQ(loadOver(0).BtCmd, 10);
  EXPECT_EQ(loadOver(0).BtCmdVal, 0);
  EXPECT_EQ(loadOver(0).BtCmdText, u"");
}

TEST_F(ProfileTest, ANameIsAProfileOfTheDataFolderAndAPathIsItself) {
  AsTool([] {
    GetAppState().switches.buttonActions.fill({1, 65, {}});
    SaveProfile(u"school");
    SaveProfile(u"C:\\Windows\\Temp\\other.bpf");
  });
  EXPECT_EQ(Load(3, u"C:\\Users\\Public\\Documents\\Sarvik5\\school.bpf").BtCmdVal, 65);
  EXPECT_EQ(Load(3, u"C:\\Windows\\Temp\\other.bpf").BtCmdVal, 65);
}

TEST_F(ProfileTest, AFileThatCannotBeWrittenStaysAsItWas) {
  const std::string before = "[Button1]\r\nBtCmd=1\r\nBtCmdVal=65\r\n";
  machine_.WriteFile(kProfile, before);
  machine_.HoldForWriting(kProfile, true);
  SaveText({0, -1, u"a"});
  EXPECT_EQ(File(), before);
  machine_.HoldForWriting(kProfile, false);
  machine_.Fail("MoveFileExW", 1, ERROR_ACCESS_DENIED);  // it cannot become UTF-16, but could be written
  SaveText({0, -1, u"\x0416"});
  EXPECT_EQ(File(), before);
  machine_.SetReadOnly(kProfile, true);
  SaveText({0, -1, u"\x0416"});
  EXPECT_EQ(File(), before);
}

// ---- function tables ------------------------------------------------------------------------------------------

class FunctionTables : public ProfileTest {
 protected:
  std::string Table(const WCHAR* section, LANGID language = 0x0809) {
    std::string words;
    AsTool([&] {
      GetAppState().system.CurrentLangID = language;
      for (const FunctionEntry& entry : LoadFunctionTable(section)) {
        words.append(std::to_string(entry.value)).append(" ");
        words.append(entry.name.begin(), entry.name.end()).append("; ");
      }
    });
    return words;
  }
  void WriteTable(std::u16string_view language, std::string_view text) {
    machine_.WriteFile(
        std::u16string(pal::Machine::kProgramDirectory) + u"sarvikkey_" + std::u16string(language) + u".ini",
        text);
  }
};

TEST_F(FunctionTables, EntriesWithoutAValueOrANameAreLeftOut) {
  WriteTable(u"English",
             "[Wendle]\r\nNumOfFunctions=5\r\nCmdVal1=7\r\nCmdName1=one\r\nCmdName2=two\r\nCmdVal3="
             "9\r\nCmdName3=three\r\n"
             "CmdVal4=4\r\nCmdVal5=-1\r\nCmdName5=five\r\nCmdVal6=6\r\nCmdName6=six\r\n[Lexora]\r\nCmdVal1="
             "1\r\nCmdName1=a\r\n");
  EXPECT_EQ(Table(u"Wendle"), "7 one; 9 three; ");
  EXPECT_EQ(Table(u"Lexora"), "");
  EXPECT_EQ(Table(u"PageVoice"), "");
  WriteTable(u"English", "[Wendle]\r\nNumOfFunctions=1\r\nCmdVal1=0x20\r\nCmdName1=" + std::string(200, 'n'));
  EXPECT_EQ(Table(u"Wendle"), "32 " + std::string(126, 'n') + "; ");
}

TEST_F(FunctionTables, FollowTheLanguageAndHaveNoFallBack) {
  WriteTable(u"English", "[Wendle]\r\nNumOfFunctions=1\r\nCmdVal1=1\r\nCmdName1=start\r\n");
  WriteTable(u"Nederlands", "[Wendle]\r\nNumOfFunctions=1\r\nCmdVal1=1\r\nCmdName1=begin\r\n");
  EXPECT_EQ(Table(u"Wendle", 0x0413), "1 begin; ");
  EXPECT_EQ(Table(u"Wendle", 0x040C), "1 start; ");
  machine_.RemoveFile(u"C:\\Program Files\\Veltra\\sarvikkey_Nederlands.ini");
  EXPECT_EQ(Table(u"Wendle", 0x0413), "");
}

TEST_F(FunctionTables, ADamagedCountEnds) {
  WriteTable(u"English", "[Wendle]\r\nNumOfFunctions=2147483647\r\nCmdVal1=1\r\nCmdName1=a\r\n");
  EXPECT_EQ(Table(u"Wendle"), "1 a; ");
  WriteTable(u"English", "[Wendle]\r\nNumOfFunctions=-5\r\nCmdVal1=1\r\nCmdName1=a\r\n");
  EXPECT_EQ(Table(u"Wendle"), "");
}

TEST_F(FunctionTables, DeliveredOnesAreCompleteAndAlikeInBothLanguages) {
  for (const WCHAR* section : {kVirtualKeysTable, kWindowsFunctionsTable, kTalkBuilderTable, kPageVoiceTable,
                               kWendleTable, kLexoraTable}) {
    AsTool([section] {
      const auto english = LoadFunctionTable(section);
      GetAppState().system.CurrentLangID = 0x0413;
      const auto dutch = LoadFunctionTable(section);
      EXPECT_FALSE(english.empty());
      ASSERT_EQ(english.size(), dutch.size());
      const WideText path = WideText(pal::Machine::kProgramDirectory) + u"sarvikkey_English.ini";
      EXPECT_EQ(english.size(), GetPrivateProfileIntW(section, u"NumOfFunctions", 0, path.c_str()));
      for (size_t i = 0; i < english.size(); ++i) {
        EXPECT_EQ(english[i].value, dutch[i].value);
        for (size_t j = 0; j < i; ++j) {
          EXPECT_NE(english[i].value, english[j].value);
          EXPECT_NE(english[i].name, english[j].name);
          EXPECT_NE(dutch[i].name, dutch[j].name);
        }
      }
    });
  }
}

// ---- the macro editor -----------------------------------------------------------------------------------------

using MacroEditorTest = ProfileTest;

TEST_F(MacroEditorTest, GetsAndGivesTheMacro) {
  std::optional<WideText> composed;
  const auto compose = [&](const WideText& text) {
    AsTool([&] {
      LoadMacroLibrary();
      composed = ComposeMacro(nullptr, text);
      UnloadMacroLibrary();
    });
  };
  simulator::TheMacroEditor().answer = "caf\xE9{Enter}";
  compose(u"\x20AC old");
  EXPECT_EQ(composed, u"caf\xE9{Enter}");
  EXPECT_EQ(simulator::TheMacroEditor().shown,
            "Sarvik5|\x80 old|C:\\Users\\Public\\Documents\\Sarvik5\\custom.mcr");
  compose(WideText(1500, u'x'));
  EXPECT_EQ(simulator::TheMacroEditor().shown.size(),
            std::string("Sarvik5||C:\\Users\\Public\\Documents\\Sarvik5\\custom.mcr").size() + 1023);
  simulator::TheMacroEditor().answer = "{Entr}";
  compose(u"old");
  EXPECT_EQ(composed, std::nullopt);
  desk_.Remove(simulator::Library::kEnglishMacros);
  simulator::TheMacroEditor().answer = "new";
  compose(u"old");
  EXPECT_EQ(composed, std::nullopt);
}

}  // namespace
}  // namespace veltra
