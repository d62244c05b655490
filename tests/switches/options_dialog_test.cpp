#include "simulator/board.h"
#include "simulator/macro_plugin.h"
#include "tests/dialog_test.h"

namespace veltra {
namespace {

using pal::ListEntry;
using simulator::Button;
using simulator::SimulatedTablet;
using Texts = std::vector<std::string>;

class Options : public DialogTest {
 protected:
  void OpenOptions() { Open(IDC_OPTIONS); }
  void WriteTables() {
    machine.WriteFile(u"C:\\Program Files\\Veltra\\sarvikkey_English.ini",
                      "[VirtualKeys]\r\nNumOfFunctions=2\r\nCmdVal1=32\r\nCmdName1=Space\r\n"
                      "CmdVal2=65\r\nCmdName2=A\r\n"
                      "[WindowsFunctions]\r\nNumOfFunctions=2\r\nCmdVal1=0\r\nCmdName1=Volume up\r\n"
                      "CmdVal2=1\r\nCmdName2=Volume down\r\n"
                      "[Lexora]\r\nNumOfFunctions=1\r\nCmdVal1=3\r\nCmdName1=Speak\r\n");
  }
  void WriteProfile(std::string_view text) { machine.WriteFile(SimulatedTablet::kProfileFile, text); }
  std::string Profile() { return machine.ReadFile(SimulatedTablet::kProfileFile).value_or(""); }
};

TEST_F(Options, ShowsTheSettings) {
  WriteTables();
  SetUserValue(u"Sw1Start", 3000);
  SetUserValue(u"Sw1CmdVal", 50002);
  SetUserValue(u"Sw2CmdVal", 65);
  SetUserValue(u"SpeakerVol", 55);
  SetUserValue(u"MicrophoneVol", 4);
  SetUserValue(u"DisableUSBBack", 1);
  SetUserValue(u"EnableBluetooth", 0);
  SetUserValue(u"AllowEscape", 0);
  tablet.Pic().identity.firmware = "101";
  OpenOptions();
  const auto dialog = person::FrontDialog();
  ASSERT_TRUE(dialog);
  EXPECT_EQ(dialog->title, u"Options");
  EXPECT_TRUE(dialog->isTopmost);
  EXPECT_EQ(dialog->owner, tablet.MainWindow());
  EXPECT_EQ(person::Look(IDO_SWITCH_1_STARTS).text, u"After 3 sec");
  EXPECT_EQ(person::Look(IDO_SWITCH_1).text, u"Joystick Button 3");
  EXPECT_EQ(person::Look(IDO_SWITCH_2).text, u"A");
  EXPECT_EQ(person::Look(IDO_MIDDLE).text, u"<Disabled>");
  EXPECT_EQ(person::Look(IDO_SPEAKER_VOLUME).position, 5);
  EXPECT_EQ(person::Look(IDO_SPEAKER_VOLUME).highest, 10);
  EXPECT_EQ(person::Look(IDO_MICROPHONE_VOLUME).position, 4);
  EXPECT_EQ(person::Look(IDO_MICROPHONE_VOLUME).highest, 9);
  const std::pair<int, bool> checks[] = {{IDO_FLIGHT_MODE, false},     {IDO_WLAN, true},
                                         {IDO_BLUETOOTH, false},       {IDO_MOBILE_PHONE, true},
                                         {IDO_DISABLE_USB_BACK, true}, {IDO_DISABLE_USB_BOTTOM, false}};
  for (const auto& [id, checked] : checks) EXPECT_EQ(person::Look(id).isChecked, checked) << id;
  EXPECT_EQ(person::Look(IDO_PIC_VERSION).text, u"101");
  EXPECT_EQ(person::Look(IDO_DEVICE_VERSION).text, u"1.0.0.0");
}

TEST_F(Options, ListsHaveAValueForEachEntry) {
  WriteTables();
  OpenOptions();
  const std::vector<ListEntry> start = person::Look(IDO_SWITCH_1_STARTS).entries;
  ASSERT_EQ(start.size(), 11U);
  EXPECT_EQ(start[0], (ListEntry{u"<Don't start>", 0}));
  EXPECT_EQ(start[1], (ListEntry{u"Immediately", 10}));
  EXPECT_EQ(start[10], (ListEntry{u"After 9 sec", 9000}));
  const std::vector<ListEntry> keys = person::Look(IDO_SWITCH_1).entries;
  ASSERT_EQ(keys.size(), 13U);
  EXPECT_EQ(keys[0], (ListEntry{u"<Normal>", 0}));
  EXPECT_EQ(keys[2], (ListEntry{u"Rightclick", -2}));
  EXPECT_EQ(keys[10], (ListEntry{u"Joystick Button 8", 50007}));
  EXPECT_EQ(keys[12], (ListEntry{u"A", 65}));
  EXPECT_EQ(person::Look(IDO_SWITCH_2).entries, keys);
  const std::vector<int64_t> types = [] {
    std::vector<int64_t> values;
    for (const ListEntry& entry : person::Look(IDO_ROW_TYPE_3).entries) values.push_back(entry.data);
    return values;
  }();
  EXPECT_EQ(types, (std::vector<int64_t>{10, 0, 1, 2, 3, 4, 5, 9, 6, 7}));
}

TEST_F(Options, OkStoresAndSends) {
  WriteTables();
  OpenOptions();
  person::Choose(IDO_SWITCH_1_STARTS, u"After 3 sec");
  person::Choose(IDO_SWITCH_1, u"Leftclick");
  person::Choose(IDO_SWITCH_2, u"Space");
  person::Choose(IDO_MIDDLE, u"<Disabled>");
  person::Press(IDO_DISABLE_USB_BOTTOM);
  person::Press(IDO_WLAN);
  person::Choose(IDO_ROW_TYPE_0, u"Start program");
  person::Type(IDO_ROW_TEXT_0, u"C:\\talk.exe");
  person::Choose(IDO_ROW_TYPE_2, u"Send key");
  person::Choose(IDO_ROW_VALUE_2, u"A");
  person::Choose(IDO_ROW_TYPE_3, u"Talk Builder: do actions of cell with ID");
  person::Type(IDO_ROW_CELL_3, u"cell 7");
  Settle();
  EXPECT_EQ(NewRequests(), Texts{});
  PressAndSettle(IDOK);
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(NewRequests(), (Texts{"StartWithSwitch=3000", "EnableBT=1", "EnableGsm=1"}));
  const std::pair<std::u16string_view, int32_t> values[] = {
      {u"Sw1Start", 3000},      {u"Sw1CmdVal", -1}, {u"Sw2CmdVal", 32},      {u"AllowEscape", 0},
      {u"DisableUSBBottom", 1}, {u"EnableWLAN", 0}, {u"EnableFlightMode", 0}};
  for (const auto& [name, value] : values) EXPECT_EQ(UserValue(name), static_cast<uint32_t>(value)) << value;
  for (const std::string_view line : {"BtCmd=3\r\nBtCmdVal=-1\r\nBtCmdText=C:\\talk.exe",
                                      "BtCmd=1\r\nBtCmdVal=65", "BtCmd=9", "BtCmdText=cell 7"})
    EXPECT_NE(Profile().find(line), std::string::npos) << line << " in " << Profile();

  // From now on the switch clicks.
  Press(Button::kSwitch1);
  const auto clicks = New<pal::MouseInput>();
  ASSERT_EQ(clicks.size(), 1U);
  EXPECT_EQ(clicks[0].flags, MOUSEEVENTF_LEFTDOWN);
}

TEST_F(Options, WhatIsNotInAListStaysAsItIs) {
  WriteTables();
  SetUserValue(u"Sw1CmdVal", 12345);
  SetUserValue(u"Sw1Start", 1234);
  WriteProfile(
      "[Button1]\r\nBtCmd=8\r\nBtCmdVal=99\r\n[Button2]\r\nBtCmd=1\r\nBtCmdVal=77\r\n"
      "[Button3]\r\nBtCmd=42\r\nBtCmdVal=5\r\n");
  OpenOptions();
  for (const int list : {IDO_SWITCH_1, IDO_ROW_TYPE_0, IDO_ROW_VALUE_0, IDO_ROW_VALUE_1, IDO_ROW_TYPE_2})
    EXPECT_EQ(person::Look(list).selection, CB_ERR) << list;
  EXPECT_EQ(person::Look(IDO_ROW_VALUE_0).entries, (std::vector<ListEntry>{{u"Speak", 3}}));
  EXPECT_EQ(person::Look(IDO_SWITCH_1_STARTS).text, u"<Don't start>");
  PressAndSettle(IDOK);
  EXPECT_EQ(NewRequests().front(), "StartWithSwitch=0");
  EXPECT_EQ(UserValue(u"Sw1CmdVal"), 12345U);
  EXPECT_EQ(UserValue(u"Sw1Start"), 0U);
  for (const std::string_view line :
       {"BtCmd=8\r\nBtCmdVal=99", "BtCmd=1\r\nBtCmdVal=77", "BtCmd=42\r\nBtCmdVal=5"})
    EXPECT_NE(Profile().find(line), std::string::npos) << line << " in " << Profile();

  // A value belongs to its type: with another one it is gone.
  OpenAgain(IDC_OPTIONS);
  person::Choose(IDO_ROW_TYPE_1, u"Perform Windows function");
  PressAndSettle(IDOK);
  EXPECT_NE(Profile().find("BtCmd=4\r\nBtCmdVal=-1"), std::string::npos) << Profile();
}

TEST_F(Options, GivenUpItStoresNothingButTheVolumes) {
  OpenOptions();
  const std::string profile = Profile();
  for (const WayOut way : {WayOut::kEscape, WayOut::kCloseBox}) {
    person::Choose(IDO_SWITCH_1, u"Rightclick");
    person::Choose(IDO_SWITCH_1_STARTS, u"Immediately");
    person::Press(IDO_FLIGHT_MODE);
    person::Choose(IDO_ROW_TYPE_0, u"<None>");
    person::Drag(IDO_SPEAKER_VOLUME, way == WayOut::kEscape ? 7 : 8);
    Leave(way);
    EXPECT_FALSE(IsOpen());
    EXPECT_EQ(NewRequests(), Texts{});
    EXPECT_EQ(UserValue(u"Sw1CmdVal"), 0U);
    EXPECT_EQ(UserValue(u"EnableFlightMode"), 0U);
    EXPECT_EQ(Profile(), profile);
    OpenAgain(IDC_OPTIONS);
    EXPECT_EQ(person::Look(IDO_SPEAKER_VOLUME).position, way == WayOut::kEscape ? 7 : 8);
    EXPECT_EQ(person::Look(IDO_SWITCH_1).text, u"<Normal>");
  }
}

TEST_F(Options, SlidersActAtOnce) {
  OpenOptions();
  person::Drag(IDO_SPEAKER_VOLUME, 7);
  Settle();
  const auto levels = New<pal::PlaybackLevel>();
  ASSERT_FALSE(levels.empty());
  EXPECT_EQ(tablet.Ask(SimulatedTablet::kDeviceToolRequest, 20), 0x10000 + 70);
  person::PressKey(VK_LEFT);  // one step with the keyboard
  Settle();
  EXPECT_EQ(tablet.Ask(SimulatedTablet::kDeviceToolRequest, 20), 0x10000 + 60);
}

// Each button does on the board what the operation of that number does.
TEST_F(Options, AudioButtonsAreDeviceOperations) {
  OpenOptions();
  const std::pair<int, WPARAM> buttons[] = {{IDO_SPEAKERS_ON, 4},   {IDO_SPEAKERS_OFF, 5},
                                            {IDO_HEADPHONES_ON, 0}, {IDO_HEADPHONES_OFF, 1},
                                            {IDO_MICROPHONE_ON, 9}, {IDO_MICROPHONE_OFF, 8}};
  auto& transfers = simulator::TheBoard().transfers;
  for (const auto& [button, operation] : buttons) {
    tablet.Ask(SimulatedTablet::kDeviceToolRequest, operation + 1);
    transfers.clear();
    tablet.Ask(SimulatedTablet::kDeviceToolRequest, operation + 1);
    const auto expected = std::exchange(transfers, {});
    PressAndSettle(button);
    EXPECT_FALSE(expected.empty()) << button;
    EXPECT_EQ(transfers, expected) << button;
  }
}

TEST_F(Options, FlightModeLeavesTheRadiosSettings) {
  SetUserValue(u"EnableBluetooth", 0);
  OpenOptions();
  constexpr int kRadios[] = {IDO_WLAN, IDO_BLUETOOTH, IDO_MOBILE_PHONE};
  for (const bool enabled : {false, true, false}) {
    PressAndSettle(IDO_FLIGHT_MODE);
    for (const int radio : kRadios) EXPECT_EQ(person::Look(radio).isEnabled, enabled) << radio;
  }
  simulator::TheBoard().transfers.clear();
  PressAndSettle(IDOK);
  const auto& transfers = simulator::TheBoard().transfers;
  ASSERT_FALSE(transfers.empty());
  EXPECT_EQ(transfers.front().bytes.at(0), 0x12);      // port A of the expander
  EXPECT_EQ(transfers.front().bytes.at(1) & 0x02, 0);  // WLAN
  EXPECT_EQ(NewRequests(), (Texts{"StartWithSwitch=0", "EnableBT=0", "EnableGsm=0"}));
  EXPECT_EQ(UserValue(u"EnableFlightMode"), 1U);
  EXPECT_EQ(UserValue(u"EnableWLAN"), 1U);
  EXPECT_EQ(UserValue(u"EnableBluetooth"), 0U);
  OpenAgain(IDC_OPTIONS);
  for (const int radio : kRadios) EXPECT_FALSE(person::Look(radio).isEnabled) << radio;
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
      }
    }
}

TEST_F(Options, AnotherActionBeginsWithAnEmptyText) {
  OpenOptions();
  person::Choose(IDO_ROW_TYPE_0, u"Send macro");
  person::Type(IDO_ROW_TEXT_0, std::u16string(1100, u'x'));
  Settle();
  EXPECT_EQ(person::Look(IDO_ROW_TEXT_0).text.size(), 1023U);
  person::Choose(IDO_ROW_TYPE_0, u"Play Wave File");
  Settle();
  EXPECT_EQ(person::Look(IDO_ROW_TEXT_0).text, u"");
}

TEST_F(Options, BrowsingChoosesAFile) {
  OpenOptions();
  const struct {
    std::u16string_view action;
    std::u16string_view extension;
    size_t filters;
  } cases[] = {{u"Play Wave File", u"wav", 1}, {u"Start program", u"exe", 2}};
  for (const auto& c : cases) {
    person::Choose(IDO_ROW_TYPE_1, c.action);
    person::Type(IDO_ROW_TEXT_1, u"before");
    PressAndSettle(IDO_ROW_BROWSE_1);
    ASSERT_EQ(person::OpenFileBoxes().size(), 1U);
    const pal::OpenFileBox box = person::OpenFileBoxes().front();
    EXPECT_EQ(box.initialName, u"before");
    EXPECT_EQ(box.defaultExtension, c.extension);
    EXPECT_EQ(box.filters.size(), c.filters);
    EXPECT_EQ(box.flags, 0x81804U);
    person::AnswerFileBox(std::nullopt);
    Settle();
    EXPECT_EQ(person::Look(IDO_ROW_TEXT_1).text, u"before");
    PressAndSettle(IDO_ROW_BROWSE_1);
    person::AnswerFileBox(u"C:\\chosen");
    Settle();
    EXPECT_EQ(person::Look(IDO_ROW_TEXT_1).text, u"C:\\chosen");
  }
}

TEST_F(Options, MacrosArePutTogetherInThePlugIn) {
  OpenOptions();
  person::Choose(IDO_ROW_TYPE_2, u"Send macro");
  person::Type(IDO_ROW_TEXT_2, u"a");
  PressAndSettle(IDO_ROW_BROWSE_2);
  EXPECT_EQ(simulator::TheMacroEditor().shown, "Sarvik5|a|C:\\Users\\Public\\Documents\\Sarvik5\\custom.mcr");
  EXPECT_EQ(person::Look(IDO_ROW_TEXT_2).text, u"a");  // given up
  simulator::TheMacroEditor().answer = "b c";
  PressAndSettle(IDO_ROW_BROWSE_2);
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
  EXPECT_EQ(Colours(), (Painted{kWhite, kWhite}));
  tablet.Press(Button::kSwitch1);
  EXPECT_EQ(Colours(), (Painted{kGreen, kWhite}));
  tablet.Press(Button::kSwitch2);
  EXPECT_EQ(Colours(), (Painted{kGreen, kGreen}));
  tablet.Release(Button::kSwitch1);
  EXPECT_EQ(Colours(), (Painted{kWhite, kGreen}));
  EXPECT_EQ(machine.CountOpen("brush"), 0);

  // Closed and opened with a switch held, and without.
  Leave(WayOut::kEscape);
  OpenAgain(IDC_OPTIONS);
  EXPECT_EQ(Colours(), (Painted{kWhite, kGreen}));
  Leave(WayOut::kEscape);
  tablet.Release(Button::kSwitch2);
  Settle();
  OpenAgain(IDC_OPTIONS);
  EXPECT_EQ(Colours(), (Painted{kWhite, kWhite}));
}

TEST_F(Indicator, IsTwoCirclesInTheMiddleOfItsControl) {
  OpenOptions();
  const auto drawn = New<pal::EllipseDrawn>();
  ASSERT_GE(drawn.size(), 2U);
  const pal::EllipseDrawn& one = drawn[0];
  const pal::EllipseDrawn& two = drawn[1];
  const RECT area = person::Look(IDO_INDICATOR).rect;
  const int diameter = area.bottom - area.top - 10;
  EXPECT_EQ(one.top, area.top + 5);
  EXPECT_EQ(one.bottom - one.top, diameter);
  EXPECT_EQ(one.right - one.left, diameter);
  EXPECT_EQ(one.left, area.left + (area.right - area.left - (2 * diameter + 10)) / 2);
  EXPECT_EQ(two.left, one.right + 10);
  EXPECT_EQ(two.right - two.left, diameter);
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

// ---- what is held, and how often it opens -----------------------------------------------------------------

TEST_F(Options, OpeningLetsGoOfWhatASwitchHolds) {
  SetUserValue(u"Sw1CmdVal", -1);
  Start();
  tablet.Advance(5s);
  Press(Button::kSwitch1);
  OpenAgain(IDC_OPTIONS);
  const auto mouse = New<pal::MouseInput>();
  ASSERT_EQ(mouse.size(), 1U);
  EXPECT_EQ(mouse[0].flags, MOUSEEVENTF_LEFTUP);
  Release(Button::kSwitch1);
  EXPECT_TRUE(New<pal::MouseInput>().empty());
}

TEST_F(Options, OpensOnce) {
  OpenOptions();
  Leave(WayOut::kEscape);
  const int windows = machine.CountOpen("window");
  OpenAgain(IDC_OPTIONS);
  EXPECT_EQ(New<pal::DialogShown>().size(), 1U);
  OpenAgain(IDC_OPTIONS);
  EXPECT_TRUE(New<pal::DialogShown>().empty());
  Leave(WayOut::kEscape);
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(machine.CountOpen("window"), windows);
}

TEST_F(Options, TheSessionMayEndMeanwhile) {
  OpenOptions();
  EXPECT_EQ(tablet.Ask(WM_ENDSESSION, TRUE), 0);
  tablet.Advance(5s);
  EXPECT_TRUE(machine.ExitCode());
}

}  // namespace
}  // namespace veltra
