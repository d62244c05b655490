#include "simulator/console.h"

#include <gtest/gtest.h>

#include <sstream>

#include "simulator/tablet_world.h"

namespace simulator {
namespace {

class ConsoleTest : public testing::Test {
 protected:
  // The problem of a script, empty when it went well.
  std::string Run(const std::string& script) {
    std::istringstream lines(script);
    return console.RunScript(lines, "script").value_or("");
  }
  std::ostringstream out;
  TabletWorld world;
  Console console{world, out};
};

TEST_F(ConsoleTest, SaysWhichLineIsWrongAndWhy) {
  EXPECT_EQ(Run("# a comment\n\nwait 1s\nwate 1s\n"),
            "script:4: \"wate 1s\": unknown command, \"help\" lists them");
  EXPECT_EQ(Run("sw1 push\n"), "script:1: \"sw1 push\": expects: press|release");
  EXPECT_EQ(Run("say \"no end\n"), "script:1: \"say \"no end\": a quote is not closed");
}

TEST_F(ConsoleTest, KnowsItsWords) {
  using Names = std::vector<std::string_view>;
  EXPECT_EQ(Completions(console, "se"), (Names{"settle", "set", "send-data"}));
  EXPECT_EQ(Completions(console, "set Sw1"), (Names{"Sw1CmdVal", "Sw1Start"}));
  EXPECT_EQ(Completions(console, "sw1 p"), Names{"press"});
  ASSERT_EQ(Run("action fn1-short 9 120\nhelp set\ncontroller-power off\nsw1 press\napp open Lexorra\n"), "");
  const std::string profile = world.ReadFile(std::string(kDataFolder) + "curprofile.bpf").value_or("");
  EXPECT_NE(profile.find("BtCmdText=120"), std::string::npos);
  EXPECT_NE(out.str().find("it looks for: \"Talk Builder\""), std::string::npos);
  EXPECT_NE(out.str().find("AllowEscape"), std::string::npos);
  EXPECT_NE(out.str().find("the controller has no power"), std::string::npos);
}

TEST_F(ConsoleTest, WrongLinesChangeNothing) {
  std::istringstream lines(
      "sw1|sw1 push|sw1 press hard|battery|battery 300|battery x|adapter maybe|raw 55 5G|raw 155|fault|"
      "fault flip 0|fault flip many|fault tickle|pace|reply-delay 3|firmware|"
      "wait|wait 1|wait -1s|tap sw3|tap sw1 long|answer maybe|answer yes|set X|set X y|machine|"
      "app|app shut Lexora|app close Lexora|joystick|joystick broken|mouse-filter|board|"
      "board start-error|port|port explode|send-data|send-data 0 x from Nobody|request|led|"
      "led bright|suspend|close|quit|at 1s|at soon expect x|expect|check|check weather|show|"
      "bytes|timeline some|registry a b|press|press OK|slide 1 fast|key|tray|tray power|"
      "tray power double-click Options|tray tool menu|only|only moon wait 1s|worlds|"
      "check control|check control OK shown|set Sw1Cmd 1|machine Sw1CmdVal 1|registry Sw1|"
      "check no registry Sw1 1|check line x|fail ExitWindows 1|board lacks KEApi|worlds moon|resume now|"
      "help weather|update nowhere.hex|action fn1-short 7 Hello|");
  for (std::string line; std::getline(lines, line, '|');) EXPECT_TRUE(console.RunLine(line)) << line;
  EXPECT_EQ(world.Tablet().Mark(), 0U);
  EXPECT_EQ(world.Tablet().Machine().clock.Now(), Duration(0));
}

TEST_F(ConsoleTest, ExpectationsFollowTheOrderOfTheTimeline) {
  ASSERT_EQ(Run("wait 1s\nsw1 press\nwait 1s\nsw1 release\n"), "");
  EXPECT_EQ(Run("expect no weather\nat 1s expect exactly controller -> Sw1Make\nexpect no Sw1Make\n"), "");
  EXPECT_NE(Run("expect Sw1Make\n"), "");  // it lies behind the last one that was met
  EXPECT_NE(Run("expect no Sw1Break\n"), "");
  EXPECT_NE(Run("expect exactly Sw1Break\n"), "");
  EXPECT_NE(Run("at 1.9s expect Sw1Break\n"), "");
  EXPECT_EQ(Run("at +0s expect Sw1Break\n"), "");
  EXPECT_EQ(Run("sw2 press\nmark\nexpect no Sw2Make\n"), "");
}

TEST_F(ConsoleTest, ControlsAreFoundByTextLabelOrNumber) {
  ASSERT_EQ(Run("set StartupDelay 0\nstart -s\nsettle\ntray tool menu Options\n"), "");
  EXPECT_EQ(Run("press Speakers Off\nchoose 1105 Leftclick\ncheck control \"Switch 1\" text Leftclick\n"
                "check control \"Switch 1\" has Space=32\ncheck control \"Version PIC\" text 112\n"
                "check control 1053 hidden\ncheck no control \"Flight mode\" checked\n"),
            "");
  for (const char* line :
       {"press Speakers Maybe", "press Nowhere", "choose \"Switch 1\" Nothing",
        "choose \"Switch 1\" Space=32", "slide \"Switch 1\" 3", "type Middle x",
        "check control WLAN unchecked", "check control WLAN text x", "check no control OK enabled",
        "check control \"Switch 1\" has Nothing", "check control \"Speaker volume\" at 12", "press 1002",
        "press 1018", "check no dialog Options", "check dialog Nothing", "menu Options", "start -s"})
    EXPECT_TRUE(console.RunLine(line)) << line;
}

TEST_F(ConsoleTest, ChecksFailWhenTheyShould) {
  ASSERT_EQ(Run("set Sw1CmdVal -1\n"), "");
  EXPECT_EQ(Run("check registry Sw1CmdVal -1\ncheck no registry Sw1CmdVal 1\ncheck line\ncheck no box x\n"),
            "");
  for (const char* line : {"check registry Sw1CmdVal 1", "check no line", "check box x", "check exit 0",
                           "check log x", "check file x", "check dialog", "only tablet check box"})
    EXPECT_NE(Run(line), "") << line;
  EXPECT_EQ(Run("only windows check box\ncheck no dialog\n"), "");
}

}  // namespace
}  // namespace simulator
