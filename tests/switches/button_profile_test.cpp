// Profile files, function tables and the macro editor, called as the options dialog calls them. What comes
// back of a text is in profile_contract.cpp.
#include "switches/button_profile.h"

#include <gtest/gtest.h>

#include <functional>

#include "app/app_state.h"
#include "pal/machine/machine.h"
#include "pal/store/private_profile.h"
#include "simulator/desk.h"
#include "simulator/macro_plugin.h"
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
    ASSERT_TRUE(machine_.clock.AdvanceUntil([this] { return machine_.ExitCode().has_value(); },
                                            std::chrono::minutes(1)));
  }
  void Save(const ButtonAction& action, const WideText& name = WideText(kProfile)) {
    AsTool([&] {
      GetAppState().switches.buttonActions.fill(action);
      SaveProfile(name);
    });
  }
  // "type value text" of each action, loaded over others.
  std::string Loaded(std::u16string_view path = kProfile) {
    std::string words;
    AsTool([&] {
      GetAppState().switches.buttonActions.fill({1, 2, u"kept"});
      LoadProfile(WideText(path));
      for (const ButtonAction& action : GetAppState().switches.buttonActions)
        words += std::to_string(action.BtCmd) + " " + std::to_string(action.BtCmdVal) + " " +
                 std::string(action.BtCmdText.begin(), action.BtCmdText.end()) + "; ";
    });
    return words;
  }
  std::string File() { return machine_.disk.Read(kProfile).value_or("(none)"); }

  pal::Machine machine_;
  simulator::Desk desk_{machine_};
};

TEST_F(ProfileTest, WhatIsMissingHasItsDefaults) {
  EXPECT_EQ(Loaded(), "4 0 kept; 4 1 kept; 10 2 kept; 10 2 kept; ");
  machine_.disk.Write(kProfile, "[Button2]\r\nBtCmd=9\r\nBtCmdVal=-1\r\nBtCmdText=cell 7\r\n");
  EXPECT_EQ(Loaded(), "10 0 ; 9 -1 cell 7; 10 0 ; 10 0 ; ");
}

TEST_F(ProfileTest, TheFileIsPlainUnlessALetterNeedsMore) {
  Save({2, -1, u"\xE9\x20AC.wav"});
  std::string whole;
  for (const char button : {'1', '2', '3', '4'})
    whole.append("[Button").append(1, button).append(
        "]\r\nBtCmd=2\r\nBtCmdVal=-1\r\nBtCmdText=\xE9\x80.wav\r\n");
  EXPECT_EQ(File(), whole);
  machine_.disk.Write(kProfile, File() + "[Other]\r\nname=caf\xE9\r\n");
  Save({2, -1, u"\x0416.wav"});
  EXPECT_TRUE(File().starts_with("\xFF\xFE"));
  const std::u16string text = pal::DecodeProfile(File()).text;
  EXPECT_EQ(pal::FindProfileValue(text, u"Other", u"name"), u"caf\xE9");
  EXPECT_EQ(pal::FindProfileValue(text, u"Button4", u"BtCmdText"), u"\x0416.wav");
  const std::string before = File();
  Save({2, -1, u"\x0416.wav"});  // it is UTF-16 already
  EXPECT_EQ(File(), before);
}

TEST_F(ProfileTest, ANameIsAProfileOfTheDataFolderAndAPathIsItself) {
  Save({1, 65, {}}, u"school");
  Save({1, 66, {}}, u"C:\\Windows\\Temp\\other.bpf");
  EXPECT_EQ(Loaded(u"C:\\Users\\Public\\Documents\\Sarvik5\\school.bpf"), "1 65 ; 1 65 ; 1 65 ; 1 65 ; ");
  EXPECT_EQ(Loaded(u"C:\\Windows\\Temp\\other.bpf"), "1 66 ; 1 66 ; 1 66 ; 1 66 ; ");
}

TEST_F(ProfileTest, AFileThatCannotBeWrittenStaysAsItWas) {
  const std::string before = "[Button1]\r\nBtCmd=1\r\nBtCmdVal=65\r\n";
  machine_.disk.Write(kProfile, before);
  machine_.disk.Hold(kProfile, true);
  Save({0, -1, u"a"});
  EXPECT_EQ(File(), before);
  machine_.disk.Hold(kProfile, false);
  machine_.Fail("MoveFileExW", 1, ERROR_ACCESS_DENIED);  // it cannot become UTF-16, but could be written
  Save({0, -1, u"\x0416"});
  EXPECT_EQ(File(), before);
  EXPECT_FALSE(machine_.disk.Read(WideText(kProfile) + u".new"));
  machine_.disk.SetReadOnly(kProfile, true);
  Save({0, -1, u"\x0416"});
  EXPECT_EQ(File(), before);
}

// ---- function tables ------------------------------------------------------------------------------------------

class FunctionTables : public ProfileTest {
 protected:
  std::string Table(const WCHAR* section, LANGID language = 0x0809) {
    std::string words;
    AsTool([&] {
      GetAppState().system.CurrentLangID = language;
      for (const FunctionEntry& entry : LoadFunctionTable(section))
        words += std::to_string(entry.value) + " " + std::string(entry.name.begin(), entry.name.end()) + "; ";
    });
    return words;
  }
  void WriteTable(std::string_view text, std::u16string_view file = u"sarvikkey_English.ini") {
    machine_.disk.Write(std::u16string(pal::Disk::kProgramDirectory).append(file), text);
  }
};

TEST_F(FunctionTables, EntriesWithoutAValueOrANameAreLeftOut) {
  WriteTable(
      "[Wendle]\r\nNumOfFunctions=5\r\nCmdVal1=7\r\nCmdName1=one\r\nCmdName2=two\r\nCmdVal3=9\r\n"
      "CmdName3=three\r\nCmdVal4=4\r\nCmdVal5=-1\r\nCmdName5=five\r\nCmdVal6=6\r\nCmdName6=six\r\n"
      "[Lexora]\r\nCmdVal1=1\r\nCmdName1=a\r\n");
  EXPECT_EQ(Table(u"Wendle"), "7 one; 9 three; ");
  EXPECT_EQ(Table(u"Lexora"), "");
  EXPECT_EQ(Table(u"PageVoice"), "");
  WriteTable("[Wendle]\r\nNumOfFunctions=1\r\nCmdVal1=0x20\r\nCmdName1=" + std::string(200, 'n'));
  EXPECT_EQ(Table(u"Wendle"), "32 " + std::string(126, 'n') + "; ");
  for (const auto& [count, words] : {std::pair("2147483647", "1 a; "), std::pair("-5", "")}) {
    WriteTable(
        std::string("[Wendle]\r\nNumOfFunctions=").append(count).append("\r\nCmdVal1=1\r\nCmdName1=a\r\n"));
    EXPECT_EQ(Table(u"Wendle"), words);
  }
}

TEST_F(FunctionTables, FollowTheLanguageAndHaveNoFallBack) {
  WriteTable("[Wendle]\r\nNumOfFunctions=1\r\nCmdVal1=1\r\nCmdName1=start\r\n");
  WriteTable("[Wendle]\r\nNumOfFunctions=1\r\nCmdVal1=1\r\nCmdName1=begin\r\n", u"sarvikkey_Nederlands.ini");
  EXPECT_EQ(Table(u"Wendle", 0x0413), "1 begin; ");
  EXPECT_EQ(Table(u"Wendle", 0x040C), "1 start; ");
  machine_.disk.Remove(u"C:\\Program Files\\Veltra\\sarvikkey_Nederlands.ini");
  EXPECT_EQ(Table(u"Wendle", 0x0413), "");
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
      const WideText path = WideText(pal::Disk::kProgramDirectory) + u"sarvikkey_English.ini";
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

TEST_F(ProfileTest, TheMacroEditorGetsAndGivesTheMacro) {
  const auto composed = [&](const char* answer, const WideText& text) {
    std::optional<WideText> macro;
    simulator::TheMacroEditor().answer = answer;
    AsTool([&] {
      LoadMacroLibrary();
      macro = ComposeMacro(nullptr, text);
      UnloadMacroLibrary();
    });
    return macro;
  };
  const std::string file = "|C:\\Users\\Public\\Documents\\Sarvik5\\custom.mcr";
  EXPECT_EQ(composed("caf\xE9{Enter}", u"\x20AC old"), u"caf\xE9{Enter}");
  EXPECT_EQ(simulator::TheMacroEditor().shown, "Sarvik5|\x80 old" + file);
  composed("caf\xE9{Enter}", WideText(1500, u'x'));
  EXPECT_EQ(simulator::TheMacroEditor().shown, "Sarvik5|" + std::string(1023, 'x') + file);
  EXPECT_EQ(composed("{Entr}", u"old"), std::nullopt);
  EXPECT_EQ(composed("x", u"old"), u"x");
  EXPECT_EQ(composed("a\r\n[Button2]\r\nBtCmd=3", u"old"), std::nullopt);  // it would be lines of the profile
  desk_.Remove(simulator::Library::kEnglishMacros);
  EXPECT_EQ(composed("new", u"old"), std::nullopt);
}

}  // namespace
}  // namespace veltra
