// The side buttons' actions in the real program: what another program sees of them.
#include <chrono>
#include <fstream>
#include <thread>

#include "tests/windows/tool_fixture.h"

namespace windows_test {
namespace {

using namespace std::chrono_literals;

class ActionTest : public ToolTest {
 protected:
  // What the profile says of the next button: top short, bottom short, top long, bottom long.
  void AddAction(int command, int value, const std::string& text = {}) {
    std::filesystem::create_directories(DataFile("").parent_path());
    std::ofstream profile(DataFile("curprofile.bpf"), std::ios::binary | std::ios::app);
    profile << "[Button" << ++button_ << "]\r\nBtCmd=" << command << "\r\nBtCmdVal=" << value
            << "\r\nBtCmdText=" << text << "\r\n";
  }
  void SetUp() override {
    ToolTest::SetUp();
    Observer().Ignore("switch-input");
  }
  void TearDown() override {
    Observer().Ignore({});
    ToolTest::TearDown();
  }
  void Hold(const std::string& button, std::chrono::milliseconds time) {
    Line().SendText(button + "Make");
    AwaitLine();
    std::this_thread::sleep_for(time);
    Line().SendText(button + "Break");
  }
  void ExpectNothingMore(const Where& where = Where::current()) {
    AwaitLine(where);
    Observer().ExpectNothing(where);
  }

 private:
  int button_ = 0;
};

TEST_F(ActionTest, ShortAndLongPressesOfBothButtonsHaveTheirOwn) {
  AddAction(1, 65);
  AddAction(6, 12);
  AddAction(7, -3);
  AddAction(9, -1, "c\xE9");
  StartQuietTool();
  for (const char* application : {"PageVoice", "Wendle", "Talk Builder 4 Class"})
    Observer().OpenWindow(application);

  Hold("Fn1", 1s);
  Observer().Expect("key 65 down");
  Observer().Expect("key 65 up");
  Hold("Fn2", 1s);
  Observer().Expect("message PageVoice 32859 12 0");
  Hold("Fn1", 2s);
  Observer().Expect("message Wendle 32841 18446744073709551613 0");
  Hold("Fn2", 2s);
  Observer().Expect("copied Talk Builder 4 Class 1704 6300E900 ");
  ExpectNothingMore();
}

TEST_F(ActionTest, AMacroIsTypedIntoTheTextField) {
  AddAction(0, -1, "Hi {{Jan}}, caf\xE9{Left 2}{Shift+X}{Pause 100}{End}!");
  AddAction(0, -1, "nothing{Entr}");
  StartQuietTool();
  Observer().OpenTextField("Letter");
  Hold("Fn2", 100ms);
  Hold("Fn1", 100ms);
  Dialog("Letter").AwaitText("Hi {Jan}, caXf\xC3\xA9!");
  Observer().ForgetEvents();
}

TEST_F(ActionTest, TheMacroEditorRefusesAMistakeAndShowsItsPlace) {
  Observer().ComposeMacro("macm_English.dll", "ab{Entr}");
  Dialog("Macro").AwaitText("Cancel");
  Dialog("Macro").PressButton("OK");
  Dialog("Macro").AwaitText("Character 4: there is no key of this name.");
  Dialog("Macro").PressButton("Cancel");
  Observer().Expect("composed nothing");

  Observer().ComposeMacro("macm_Nederlands.dll", "  x{Links}\"");
  Dialog("Macro").AwaitText("Annuleren");
  Dialog("Macro").PressButton("Invoegen");
  Dialog("Macro").PressButton("OK");
  Observer().Expect("composed { } x{Links}\"{Enter}");
}

}  // namespace
}  // namespace windows_test
