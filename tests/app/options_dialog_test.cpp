#include <array>

#include "resources/version.h"
#include "simulator/macro_plugin.h"
#include "tests/dialog_test.h"

namespace veltra {
namespace {

using pal::ListEntry;
using simulator::Button;
using simulator::SimulatedTablet;

class Options : public DialogTest {
 protected:
  void OpenOptions() { Open(IDC_OPTIONS); }
  void WriteTables() {
    machine.disk.Write(u"C:\\Program Files\\Veltra\\sarvikkey_English.ini",
                       "[VirtualKeys]\r\nNumOfFunctions=2\r\nCmdVal1=32\r\nCmdName1=Space\r\n"
                       "CmdVal2=65\r\nCmdName2=A\r\n"
                       "[WindowsFunctions]\r\nNumOfFunctions=2\r\nCmdVal1=0\r\nCmdName1=Volume up\r\n"
                       "CmdVal2=1\r\nCmdName2=Volume down\r\n"
                       "[Lexora]\r\nNumOfFunctions=1\r\nCmdVal1=3\r\nCmdName1=Speak\r\n");
  }
};

TEST_F(Options, ShowsTheSettings) {
  WriteTables();
  const std::pair<std::u16string_view, int32_t> settings[] = {
      {u"Sw1Start", 3000},   {u"Sw1CmdVal", 50002},  {u"Sw2CmdVal", 65},      {u"SpeakerVol", 55},
      {u"MicrophoneVol", 4}, {u"DisableUSBBack", 1}, {u"EnableBluetooth", 0}, {u"AllowEscape", 0}};
  for (const auto& [name, value] : settings) SetUserValue(name, value);
  tablet.Pic().identity.firmware = "101";
  OpenOptions();
  const auto dialog = person::FrontDialog();
  ASSERT_TRUE(dialog);
  EXPECT_TRUE(dialog->isTopmost);
  EXPECT_EQ(dialog->owner, tablet.MainWindow());
  const RECT screen = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
  EXPECT_NEAR(dialog->rect.left + dialog->rect.right, screen.right, 1);
  EXPECT_NEAR(dialog->rect.top + dialog->rect.bottom, screen.bottom, 1);
  const std::pair<int, std::u16string_view> texts[] = {{IDO_SWITCH_1_STARTS, u"After 3 sec"},
                                                       {IDO_SWITCH_1, u"Joystick Button 3"},
                                                       {IDO_SWITCH_2, u"A"},
                                                       {IDO_MIDDLE, u"<Disabled>"},
                                                       {IDO_PIC_VERSION, u"101"},
                                                       {IDO_DEVICE_VERSION, u"" VELTRA_VERSION}};
  for (const auto& [id, text] : texts) EXPECT_EQ(person::Look(id).text, text) << id;
  for (const auto& [id, position, highest] :
       {std::array<int, 3>{IDO_SPEAKER_VOLUME, 5, 10}, std::array<int, 3>{IDO_MICROPHONE_VOLUME, 4, 9}}) {
    const pal::ControlView slider = person::Look(id);
    EXPECT_EQ((std::vector<int>{slider.position, slider.lowest, slider.highest}),
              (std::vector<int>{position, 1, highest}));
  }
  const std::pair<int, bool> checks[] = {{IDO_FLIGHT_MODE, false},     {IDO_WLAN, true},
                                         {IDO_BLUETOOTH, false},       {IDO_MOBILE_PHONE, true},
                                         {IDO_DISABLE_USB_BACK, true}, {IDO_DISABLE_USB_BOTTOM, false}};
  for (const auto& [id, checked] : checks) EXPECT_EQ(person::Look(id).isChecked, checked) << id;
  for (const int first : {0, 1}) {  // there is another way to the version
    machine.Fail("VerQueryValueW", 1, ERROR_GEN_FAILURE, first);
    Leave(WayOut::kEscape);
    OpenAgain(IDC_OPTIONS);
    EXPECT_EQ(person::Look(IDO_DEVICE_VERSION).text, u"" VELTRA_VERSION);
  }
}

TEST_F(Options, ListsHaveAValueForEachEntry) {
  WriteTables();
  OpenOptions();
  using Entries = std::vector<ListEntry>;
  Entries starts = {{u"<Don't start>", 0}, {u"Immediately", 10}};
  for (char16_t second = u'1'; second <= u'9'; ++second)
    starts.push_back({std::u16string(u"After ") + second + u" sec", (second - u'0') * 1000});
  EXPECT_EQ(person::Look(IDO_SWITCH_1_STARTS).entries, starts);
  Entries keys = {{u"<Normal>", 0}, {u"Leftclick", -1}, {u"Rightclick", -2}};
  for (char16_t button = u'1'; button <= u'8'; ++button)
    keys.push_back({std::u16string(u"Joystick Button ") + button, 50000 + button - u'1'});
  keys.push_back({u"Space", 32});
  keys.push_back({u"A", 65});
  EXPECT_EQ(person::Look(IDO_SWITCH_1).entries, keys);
  EXPECT_EQ(person::Look(IDO_SWITCH_2).entries, keys);
  std::vector<int64_t> types;
  for (const ListEntry& entry : person::Look(IDO_ROW_TYPE_3).entries) types.push_back(entry.data);
  EXPECT_EQ(types, (std::vector<int64_t>{10, 0, 1, 2, 3, 4, 5, 9, 6, 7}));
}

// Which of a row's controls an action shows.
TEST_F(Options, RowsShowTheParameterOfTheirAction) {
  WriteTables();
  OpenOptions();
  const struct {
    std::u16string_view action;
    bool text, value, cell;
    size_t entries;
  } cases[] = {
      {u"Send macro", true, false, false, 0},
      {u"Send key", false, true, false, 2},
      {u"Perform Windows function", false, true, false, 2},
      {u"Send command to Wendle", false, true, false, 0},
      {u"Talk Builder: do actions of cell with ID", false, false, true, 0},
      {u"Play Wave File", true, false, false, 0},
      {u"<None>", false, false, false, 0},
  };
  for (int row = 0; row < 4; ++row)
    for (const auto& c : cases) {
      person::Choose(IDO_ROW_TYPE_0 + row, c.action);
      Settle();
      EXPECT_EQ(person::Look(IDO_ROW_TEXT_0 + row).isVisible, c.text);
      EXPECT_EQ(person::Look(IDO_ROW_BROWSE_0 + row).isVisible, c.text);
      EXPECT_EQ(person::Look(IDO_ROW_VALUE_0 + row).isVisible, c.value);
      EXPECT_EQ(person::Look(IDO_ROW_CELL_0 + row).isVisible, c.cell);
      EXPECT_EQ(person::Look(IDO_ROW_CELL_LABEL_0 + row).isVisible, c.cell);
      if (c.value) {
        EXPECT_EQ(person::Look(IDO_ROW_VALUE_0 + row).entries.size(), c.entries);
        EXPECT_TRUE(person::Look(IDO_ROW_VALUE_0 + row).spokenName.ends_with(c.action)) << row;
      }
      if (!c.text) continue;
      const std::u16string browse = person::Look(IDO_ROW_BROWSE_0 + row).spokenName;
      EXPECT_TRUE(browse.ends_with(std::u16string(c.action) + u" ...")) << row;
    }
}

TEST_F(Options, BrowsingChoosesAFile) {
  OpenOptions();
  person::Choose(IDO_ROW_TYPE_1, u"Send macro");
  person::Type(IDO_ROW_TEXT_1, std::u16string(1100, u'x'));
  Settle();
  EXPECT_EQ(person::Look(IDO_ROW_TEXT_1).text.size(), 1023U);
  const struct {
    std::u16string_view action;
    std::u16string_view extension;
    std::vector<std::u16string_view> patterns;
  } cases[] = {{u"Play Wave File", u"wav", {u"*.wav"}}, {u"Start program", u"exe", {u"*.exe", u"*.*"}}};
  for (const auto& c : cases) {
    person::Choose(IDO_ROW_TYPE_1, c.action);
    Settle();
    EXPECT_EQ(person::Look(IDO_ROW_TEXT_1).text, u"");  // another action begins with an empty text
    person::Type(IDO_ROW_TEXT_1, u"before");
    for (const auto& answer :
         {std::optional<std::u16string>(), std::optional<std::u16string>(u"C:\\chosen")}) {
      PressAndSettle(IDO_ROW_BROWSE_1);
      ASSERT_EQ(person::OpenFileBoxes().size(), 1U);
      const pal::OpenFileBox box = person::OpenFileBoxes().front();
      EXPECT_EQ(box.initialName, u"before");
      EXPECT_EQ(box.defaultExtension, c.extension);
      EXPECT_TRUE(
          std::ranges::equal(box.filters, c.patterns, {}, &decltype(box.filters)::value_type::second));
      EXPECT_EQ(box.flags, 0x81804U);
      person::AnswerFileBox(answer);
      Settle();
      EXPECT_EQ(person::Look(IDO_ROW_TEXT_1).text, answer.value_or(u"before"));
      EXPECT_EQ(machine.disk.currentDirectory, pal::Disk::kProgramDirectory);
    }
  }
}

TEST_F(Options, MacrosArePutTogetherInThePlugIn) {
  OpenOptions();
  person::Choose(IDO_ROW_TYPE_2, u"Send macro");
  person::Type(IDO_ROW_TEXT_2, u"a");
  PressAndSettle(IDO_ROW_BROWSE_2);
  EXPECT_EQ(simulator::TheMacroEditor().shown, "Sarvik5|a|C:\\Users\\Public\\Documents\\Sarvik5\\custom.mcr");
  EXPECT_EQ(person::Look(IDO_ROW_TEXT_2).text, u"a");  // given up
  for (const char* answer : {"b\nc", "b c"}) {
    simulator::TheMacroEditor().answer = answer;
    PressAndSettle(IDO_ROW_BROWSE_2);
  }
  EXPECT_EQ(New<pal::Beep>().size(), 1U);  // of the first
  EXPECT_EQ(person::Look(IDO_ROW_TEXT_2).text, u"b c");
}

// ---- the switch indicator and the service gestures --------------------------------------------------------

class Indicator : public Options {
 protected:
  static constexpr uint32_t kWhite = 0xFFFFFF, kBlack = 0, kGreen = 0x00FF00, kBlue = 0xFF0000;

  // The colours of the two circles as they were painted last.
  std::vector<uint32_t> Colours() {
    Settle();
    const auto drawn = New<pal::EllipseDrawn>();
    if (drawn.size() < 2) return {};
    return {drawn[drawn.size() - 2].colour, drawn.back().colour};
  }
};

using Painted = std::vector<uint32_t>;

TEST_F(Indicator, ShowsWhichSwitchesAreHeld) {
  OpenOptions();
  const RECT area = person::Look(IDO_INDICATOR).rect;
  const int diameter = area.bottom - area.top - 10;
  const int left = area.left + (area.right - area.left - (2 * diameter + 10)) / 2;
  const auto drawn = pal::Select<pal::EllipseDrawn>(tablet.Since(mark));
  ASSERT_GE(drawn.size(), 2U);
  for (size_t n = 0; n < 2; ++n) {
    const int begins = n == 0 ? left : left + diameter + 10;
    EXPECT_EQ((std::vector<int>{drawn[n].left, drawn[n].top, drawn[n].right, drawn[n].bottom}),
              (std::vector<int>{begins, static_cast<int>(area.top) + 5, begins + diameter,
                                static_cast<int>(area.bottom) - 5}));
  }
  EXPECT_EQ(Colours(), (Painted{kWhite, kWhite}));
  tablet.Press(Button::kSwitch1);
  EXPECT_EQ(Colours(), (Painted{kGreen, kWhite}));
  tablet.Press(Button::kSwitch2);
  EXPECT_EQ(Colours(), (Painted{kGreen, kGreen}));
  tablet.Release(Button::kSwitch1);
  EXPECT_EQ(Colours(), (Painted{kWhite, kGreen}));
  EXPECT_EQ(machine.CountOpen("brush"), 0);
  const int windows = machine.CountOpen("window");
  OpenAgain(IDC_OPTIONS);
  EXPECT_EQ(machine.CountOpen("window"), windows);  // it is open
  Leave(WayOut::kEscape);
  OpenAgain(IDC_OPTIONS);
  EXPECT_EQ(machine.CountOpen("window"), windows);
  EXPECT_EQ(Colours(), (Painted{kWhite, kGreen}));
  tablet.NotifyPort(false, u"COM2");  // its release cannot come any more
  EXPECT_EQ(Colours(), (Painted{kWhite, kWhite}));
}

TEST_F(Indicator, TwoDoubleClicksOpenTheWayToTheUpdate) {
  OpenOptions();
  person::DoubleClick(IDO_PIC_VERSION);
  Settle();
  EXPECT_TRUE(IsOpen());
  tablet.Press(Button::kSwitch1);
  Settle();
  person::DoubleClick(IDO_INDICATOR);
  EXPECT_EQ(Colours(), (Painted{kBlue, kWhite}));
  person::DoubleClick(IDO_INDICATOR);
  EXPECT_EQ(Colours(), (Painted{kBlue, kBlack}));
  tablet.Release(Button::kSwitch1);
  Leave(WayOut::kCloseBox);  // keeps the steps
  OpenAgain(IDC_OPTIONS);
  EXPECT_EQ(Colours(), (Painted{kBlack, kBlack}));
  Leave(WayOut::kEscape);  // and this forgets them
  OpenAgain(IDC_OPTIONS);
  EXPECT_EQ(Colours(), (Painted{kWhite, kWhite}));

  for (int n = 0; n < 3; ++n) person::DoubleClick(IDO_INDICATOR);
  Settle();
  EXPECT_EQ(New<pal::Beep>().size(), 3U);
  person::DoubleClick(IDO_PIC_VERSION);
  Settle();
  EXPECT_FALSE(IsOpen());
  ASSERT_EQ(person::OpenFileBoxes().size(), 1U);  // the firmware file
  EXPECT_EQ(person::OpenFileBoxes().front().defaultExtension, u"hex");
  person::AnswerFileBox(std::nullopt);
  Settle();
  OpenAgain(IDC_OPTIONS);
  EXPECT_EQ(Colours(), (Painted{kWhite, kWhite}));
}

TEST_F(Indicator, ShiftOpensTheWayToTheUpdateAtOnce) {
  OpenOptions();
  person::Hold(VK_SHIFT, true);
  person::DoubleClick(IDO_PIC_VERSION);
  Settle();
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(person::OpenFileBoxes().size(), 1U);
}

}  // namespace
}  // namespace veltra
