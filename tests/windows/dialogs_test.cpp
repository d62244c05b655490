// The dialogs of the real program, used from outside by the numbers of their controls.
#include <fstream>
#include <sstream>

#include "resources/resource_ids.h"
#include "tests/windows/played_fixture.h"

namespace windows_test {
namespace {

using Texts = std::vector<std::string>;

constexpr int kOk = 1;
constexpr int kCancel = 2;
constexpr int kEscape = 27;

struct Language {
  int id;
  const char* name;  // as in the names of its files
  const char* options;
  const char* powerMeter;
};
constexpr Language kEnglish = {2057, "English", "Options", "Power meter"};
constexpr Language kDutch = {1043, "Nederlands", "Opties", "Batterijstatus"};

// A text of a dialog in both languages.
struct Label {
  int id;
  const char* english;
  const char* dutch;
};

class DialogTest : public PlayedToolTest {
 protected:
  // Starts the tool in that language and opens the dialog of a menu command.
  void Open(int command, const Language& language) {
    Set("CurrentLangID", language.id);
    StartPlayed();
    language_ = language;
    OpenAgain(command);
  }
  void OpenAgain(int command) {
    Observer().Post(kMainWindow, kCommand, command);
    OpenDialog(command).AwaitOpen();
  }
  windows_test::Dialog OpenDialog(int command) const {
    return Dialog(command == IDC_OPTIONS ? language_.options : language_.powerMeter);
  }
  windows_test::Dialog Options() const { return OpenDialog(IDC_OPTIONS); }
  windows_test::Dialog Meter() const { return OpenDialog(IDC_OPEN_POWER_METER); }
  std::string In(const Label& label) const {
    return language_.id == kEnglish.id ? label.english : label.dutch;
  }

  void ExpectNothingAsked() {
    AwaitAnswer();
    Controller().Serve();
    EXPECT_EQ(NewRequests(), Texts{});
  }

  std::map<std::string, std::string> Stored() { return Observer().ReadKey(Root::kUser, kSettingsKey); }

  // A section of the function tables of the language, as the lists show it.
  Texts TableEntries(const std::string& section) const {
    std::ifstream file(ProgramPath(std::string("sarvikkey_").append(language_.name).append(".ini")));
    Texts entries;
    bool inSection = false;
    std::string value;
    for (std::string line; std::getline(file, line);) {
      if (line.ends_with('\r')) line.pop_back();
      if (line.starts_with('[')) inSection = line == "[" + section + "]";
      const std::string text = line.substr(line.find('=') + 1);
      if (inSection && line.starts_with("CmdVal")) value = text;
      if (inSection && line.starts_with("CmdName")) entries.push_back(text + "=" + value);
    }
    return entries;
  }

 private:
  Language language_ = kEnglish;
};

Texts operator+(Texts first, const Texts& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

class InBothLanguages : public DialogTest, public testing::WithParamInterface<Language> {};

INSTANTIATE_TEST_SUITE_P(Dialogs, InBothLanguages, testing::Values(kEnglish, kDutch),
                         [](const auto& language) { return std::string(language.param.name); });

// ---- options ----------------------------------------------------------------------------------------------

constexpr Label kOptionsLabels[] = {
    {IDO_FLIGHT_MODE, "Flight mode", "Vliegtuigstand"},
    {IDO_WLAN, "WLAN", "WLAN"},
    {IDO_BLUETOOTH, "Bluetooth", "Bluetooth"},
    {IDO_MOBILE_PHONE, "Mobile phone", "GSM"},
    {IDO_DISABLE_USB_BACK, "Disable USB ports (back) during Standby",
     "USB poorten achteraan uitschakelen in slaapstand"},
    {IDO_DISABLE_USB_BOTTOM, "Disable USB port (bottom) during Standby",
     "USB poort onderaan uitschakelen in slaapstand"},
    {IDO_SPEAKERS_LABEL, "Speakers:", "Luidsprekers:"},
    {IDO_SPEAKERS_ON, "On", "Aan"},
    {IDO_SPEAKERS_OFF, "Off", "Uit"},
    {IDO_SPEAKER_VOLUME_LABEL, "Speaker volume:", "Luidsprekervolume:"},
    {IDO_HEADPHONES_LABEL, "Headphones:", "Hoofdtelefoon:"},
    {IDO_HEADPHONES_ON, "On", "Aan"},
    {IDO_HEADPHONES_OFF, "Off", "Uit"},
    {IDO_MICROPHONE_LABEL, "Microphone:", "Microfoon:"},
    {IDO_MICROPHONE_ON, "On", "Aan"},
    {IDO_MICROPHONE_OFF, "Off", "Uit"},
    {IDO_MICROPHONE_VOLUME_LABEL, "Microphone volume:", "Microfoonvolume:"},
    {IDO_SWITCHES_GROUP, "Switches", "Schakelaars"},
    {IDO_SWITCH_1_STARTS_LABEL, "Switch 1 starts device:", "Toestel starten:"},
    {IDO_SWITCH_1_LABEL, "Switch 1:", "Schakelaar 1:"},
    {IDO_SWITCH_2_LABEL, "Switch 2:", "Schakelaar 2:"},
    {IDO_PIC_VERSION_LABEL, "Version PIC:", "Versie PIC:"},
    {IDO_PIC_VERSION, "112", "112"},
    {IDO_DEVICE_VERSION_LABEL, "Version device:", "Versie toestel:"},
    {IDO_DEVICE_VERSION, "1.0.0.0", "1.0.0.0"},
    {IDO_SIDE_BUTTONS_GROUP, "Side buttons", "Knoppen zijkant"},
    {IDO_MIDDLE_LABEL, "Middle:", "Midden:"},
    {IDO_ROW_LABEL_0, "Top: (short)", "Boven: (kort)"},
    {IDO_ROW_LABEL_1, "Bottom: (short)", "Onder: (kort)"},
    {IDO_ROW_LABEL_2, "Top: (long)", "Boven: (lang)"},
    {IDO_ROW_LABEL_3, "Bottom: (long)", "Onder: (lang)"},
    {IDO_ROW_CELL_LABEL_0, "ID:", "ID:"},
    {IDO_ROW_BROWSE_0, "...", "..."},
    {kOk, "&OK", "&OK"},
};

TEST_P(InBothLanguages, OptionsSpeakTheLanguage) {
  Open(IDC_OPTIONS, GetParam());
  for (const Label& label : kOptionsLabels) EXPECT_EQ(Options().Text(label.id), In(label)) << label.id;
}

TEST_P(InBothLanguages, TheListsOfTheOptions) {
  Open(IDC_OPTIONS, GetParam());
  const bool english = GetParam().id == kEnglish.id;
  Texts starts =
      english ? Texts{"<Don't start>=0", "Immediately=10"} : Texts{"<Niet starten>=0", "Onmiddellijk=10"};
  for (int seconds = 1; seconds <= 9; ++seconds) {
    const std::string count = std::to_string(seconds);
    starts.push_back(english ? "After " + count + " sec=" + count + "000"
                             : "Na " + count + " seconden=" + count + "000");
  }
  EXPECT_EQ(Options().Entries(IDO_SWITCH_1_STARTS), starts);

  const Texts clicks = english ? Texts{"<Normal>=0", "Leftclick=-1", "Rightclick=-2"}
                               : Texts{"<Normaal>=0", "Linkerklik=-1", "Rechterklik=-2"};
  const Texts keys = TableEntries("VirtualKeys");
  ASSERT_EQ(keys.size(), 105u);
  EXPECT_EQ(Options().Entries(IDO_SWITCH_1), clicks + keys);  // this Windows has no joystick
  EXPECT_EQ(Options().Entries(IDO_SWITCH_2), clicks + keys);
  EXPECT_EQ(Options().Entries(IDO_MIDDLE),
            english ? (Texts{"<Disabled>=0", "Short=rightclick, Long=Escape=1"})
                    : (Texts{"<Uitgeschakeld>=0", "Kort=rechtsklik, Lang=Escape=1"}));

  const Texts actions = english ? Texts{"<None>=10",
                                        "Send macro=0",
                                        "Send key=1",
                                        "Play Wave File=2",
                                        "Start program=3",
                                        "Perform Windows function=4",
                                        "Send command to Talk Builder=5",
                                        "Talk Builder: do actions of cell with ID=9",
                                        "Send command to PageVoice=6",
                                        "Send command to Wendle=7"}
                                : Texts{"<Geen>=10",
                                        "Zend macro=0",
                                        "Zend toets=1",
                                        "Geluidsbestand afspelen=2",
                                        "Start programma=3",
                                        "Windows functie=4",
                                        "Zend commando naar Talk Builder=5",
                                        "Talk Builder: voer acties uit van vakje met ID=9",
                                        "Zend commando naar PageVoice=6",
                                        "Zend commando naar Wendle=7"};
  for (int row = 0; row < 4; ++row) EXPECT_EQ(Options().Entries(IDO_ROW_TYPE_0 + row), actions);

  // The values of the actions that have a table.
  const std::pair<size_t, const char*> tables[] = {
      {2, "VirtualKeys"}, {5, "WindowsFunctions"}, {6, "TalkBuilder"}, {8, "PageVoice"}, {9, "Wendle"}};
  for (const auto& [action, table] : tables) {
    Options().Choose(IDO_ROW_TYPE_2, actions[action].substr(0, actions[action].find('=')));
    EXPECT_TRUE(Options().Look(IDO_ROW_VALUE_2).isShown) << table;
    EXPECT_EQ(Options().Entries(IDO_ROW_VALUE_2), TableEntries(table)) << table;
  }
}

TEST_F(DialogTest, OkStoresTheOptionsAndTellsTheController) {
  Set("SpeakerVol", 55);
  Open(IDC_OPTIONS, kEnglish);
  EXPECT_EQ(Options().Position(IDO_SPEAKER_VOLUME), 5);
  EXPECT_TRUE(Options().IsChecked(IDO_WLAN));
  Options().Choose(IDO_SWITCH_1_STARTS, "After 3 sec");
  Options().Choose(IDO_SWITCH_1, "Leftclick");
  Options().Choose(IDO_SWITCH_2, "Space");
  Options().Choose(IDO_MIDDLE, "<Disabled>");
  Options().Click(IDO_DISABLE_USB_BOTTOM);
  Options().Click(IDO_WLAN);
  Options().Choose(IDO_ROW_TYPE_0, "Start program");
  Options().Enter(IDO_ROW_TEXT_0, "C:\\talk.exe");
  Options().Choose(IDO_ROW_TYPE_1, "Send key");
  Options().Choose(IDO_ROW_VALUE_1, "Enter");
  Options().Choose(IDO_ROW_TYPE_3, "Talk Builder: do actions of cell with ID");
  Options().Enter(IDO_ROW_CELL_3, "cell 7");
  Options().Drag(IDO_SPEAKER_VOLUME, 7);
  Options().Click(kOk);
  Options().AwaitClosed();
  ServeUntilAsked("EnableGsm=1");
  EXPECT_EQ(NewRequests(), (Texts{"StartWithSwitch=3000", "EnableBT=1", "EnableGsm=1"}));
  auto stored = Stored();
  const std::pair<const char*, const char*> values[] = {
      {"Sw1Start", "number:3000"},      {"Sw1CmdVal", "number:-1"}, {"Sw2CmdVal", "number:32"},
      {"AllowEscape", "number:0"},      {"EnableWLAN", "number:0"}, {"DisableUSBBack", "number:0"},
      {"DisableUSBBottom", "number:1"}, {"SpeakerVol", "number:70"}};
  for (const auto& [name, value] : values) EXPECT_EQ(stored[name], value) << name;
  const std::string profile = ReadDataFile("curprofile.bpf");
  for (const char* line : {"BtCmd=3\r\nBtCmdVal=-1\r\nBtCmdText=C:\\talk.exe", "BtCmd=1\r\nBtCmdVal=13",
                           "BtCmd=9", "BtCmdText=cell 7"})
    EXPECT_NE(profile.find(line), std::string::npos) << line << " in " << profile;
  Controller().Pic().Press(simulator::Button::kSwitch1);
  Observer().Expect("mouse left down");
}

TEST_F(DialogTest, EscapeStoresNothing) {
  Open(IDC_OPTIONS, kEnglish);
  const auto before = Stored();
  Options().Choose(IDO_SWITCH_1_STARTS, "Immediately");
  Options().Choose(IDO_SWITCH_1, "Rightclick");
  Options().Click(IDO_FLIGHT_MODE);
  Options().Choose(IDO_ROW_TYPE_0, "<None>");
  Options().Drag(IDO_SPEAKER_VOLUME, 3);
  WaitUntil("flight mode disables the radios", [&] { return !Options().Look(IDO_BLUETOOTH).isEnabled; });
  Options().PressKey(kEscape);
  Options().AwaitClosed();
  ExpectNothingAsked();
  EXPECT_EQ(Stored(), before);
  constexpr int64_t kQueryVolume = 20;
  EXPECT_EQ(SendTool(kDeviceToolRequest, kQueryVolume), 0x10000 + 30);  // that one acts at once
}

TEST_F(DialogTest, AProgramIsChosenInTheBoxOfWindows) {
  Open(IDC_OPTIONS, kEnglish);
  Options().Choose(IDO_ROW_TYPE_0, "Start program");
  for (const int way : {kCancel, kOk}) {
    constexpr int kFileName = 1148;  // cmb13 of the box
    Options().Click(IDO_ROW_BROWSE_0);
    Dialog("Open").AwaitOpen();
    Dialog("Open").Enter(kFileName, "C:\\veltra\\hexinfo.exe");
    Dialog("Open").Click(way);
    Dialog("Open").AwaitClosed();
    EXPECT_EQ(Options().Text(IDO_ROW_TEXT_0), way == kOk ? "C:\\veltra\\hexinfo.exe" : "");
  }
}

TEST_F(DialogTest, TheServiceGestureAsksForAFirmwareFile) {
  Open(IDC_OPTIONS, kEnglish);
  Options().DoubleClick(IDO_PIC_VERSION);
  AwaitAnswer();
  EXPECT_TRUE(Options().IsOpen());
  for (const int id : {IDO_INDICATOR, IDO_INDICATOR, IDO_PIC_VERSION}) Options().DoubleClick(id);
  Dialog("Open").AwaitOpen();
  EXPECT_FALSE(Options().IsOpen());
  Dialog("Open").Click(kCancel);
  Dialog("Open").AwaitClosed();
}

// ---- power meter ------------------------------------------------------------------------------------------

constexpr Label kMeterLabels[] = {
    {IDP_STATUS_GROUP, "Power status", "Stroomvoorziening"},
    {IDP_SOURCE_LABEL, "Current power source:", "Huidige stroombron:"},
    {IDP_SOURCE, "Batteries", "Batterij"},
    {IDP_REMAINING_LABEL, "Total battery power remaining:", "Resterende batterijlading:"},
    {IDP_REMAINING, "50%", "50%"},
    {IDP_LOW_GROUP, "Low battery alarm", "Alarm bij laag batterijniveau"},
    {IDP_LOW, "Activate &low battery alarm when power level reaches:", "&Laag batterijniveau melden bij:"},
    {IDP_LOW_VALUE, "10%", "10%"},
    {IDP_CRITICAL_GROUP, "Critical battery alarm", "Alarm bij kritiek batterijniveau"},
    {IDP_CRITICAL,
     "Activate c&ritical battery alarm when power level reaches:", "K&ritiek batterijniveau melden bij:"},
    {IDP_CRITICAL_VALUE, "5%", "5%"},
    {kOk, "&OK", "&OK"},
    {kCancel, "&Cancel", "&Annuleren"},
};

TEST_P(InBothLanguages, ThePowerMeterSpeaksAndFollowsTheAdapter) {
  Open(IDC_OPEN_POWER_METER, GetParam());
  for (const Label& label : kMeterLabels) EXPECT_EQ(Meter().Text(label.id), In(label)) << label.id;
  Controller().Pic().SendText("AdapterPresent=1");
  Meter().AwaitText(In({0, "AC power", "AC stroom"}));
  Meter().AwaitText(In({0, "50% (charging)", "50% (opladen)"}));
}

TEST_F(DialogTest, OkStoresTheAlarmsAndTellsTheController) {
  Set("BattLowPercentage", 80);
  Open(IDC_OPEN_POWER_METER, kEnglish);
  EXPECT_EQ(Meter().Position(IDP_LOW_LEVEL), 60);
  EXPECT_EQ(Meter().Text(IDP_LOW_VALUE), "80%");
  Meter().Click(IDP_LOW);
  WaitUntil("the level is disabled", [&] { return !Meter().Look(IDP_LOW_LEVEL).isEnabled; });
  Meter().Drag(IDP_CRITICAL_LEVEL, 12);
  EXPECT_EQ(Meter().Text(IDP_CRITICAL_VALUE), "12%");
  OpenAgain(IDC_OPEN_POWER_METER);
  Meter().Click(kOk);
  Meter().AwaitClosed();
  ServeUntilAsked("SetBatteryCritical=12");
  auto stored = Stored();
  EXPECT_EQ(stored["BattLow"], "number:0");
  EXPECT_EQ(stored["BattLowPercentage"], "number:60");
  EXPECT_EQ(stored["BattCrit"], "number:1");
  EXPECT_EQ(stored["BattCritPercentage"], "number:12");
}

TEST_F(DialogTest, CancelLeavesTheAlarms) {
  Open(IDC_OPEN_POWER_METER, kEnglish);
  const auto before = Stored();
  for (const bool byKey : {false, true}) {
    Meter().Drag(IDP_LOW_LEVEL, 40);
    Meter().Click(IDP_CRITICAL);
    if (byKey)
      Meter().PressKey(kEscape);
    else
      Meter().Click(kCancel);
    Meter().AwaitClosed();
    if (!byKey) OpenAgain(IDC_OPEN_POWER_METER);
  }
  ExpectNothingAsked();
  EXPECT_EQ(Stored(), before);
}

TEST_F(DialogTest, TheBatteryTellsAboutItself) {
  StartPlayed();
  Observer().Post(kMainWindow, kCommand, IDC_BATTERY_INFO);
  Dialog("Sarvik5").AwaitText(
      "Manufacturer: Nordcell Manufacturer date: 2023-05-17 Serial: 4711 Device name: NC-7S2P "
      "Chemistry: LION Temperature: 2981 Voltage: 11782 Current: -1240 Remaining capacity: 5160 "
      "Status: 00C0 Cycles: 37 Design capacity: 6800 Design voltage: 11100");
  Dialog("Sarvik5").PressButton("OK");
  Dialog("Sarvik5").AwaitClosed();
}

}  // namespace
}  // namespace windows_test
