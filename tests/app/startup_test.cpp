// Starts and ends that no story can tell: handles, what fails by another error, messages that come late.
#include "simulator/board.h"
#include "tests/tool_test.h"

namespace veltra {
namespace {

using simulator::SimulatedTablet;

class Startup : public ToolTest {
 protected:
  Startup() { simulator::TheBoard() = {}; }
  std::optional<pal::OpenMessageBox> Box() {
    const auto boxes = machine.boxes.Shown();
    return boxes.empty() ? std::nullopt : std::optional(boxes.back());
  }
};

TEST_F(Startup, NothingIsLeftAfterAnOrdinaryEnd) {
  Start();
  EXPECT_TRUE(tablet.Quit());
  for (const char* kind : {"mutex", "key", "file", "window", "icon", "menu", "module", "token", "com object"})
    EXPECT_EQ(machine.CountOpen(kind), 0) << kind;
  EXPECT_FALSE(simulator::TheBoard().initialized);
}

TEST_F(Startup, WithoutAFolderOfDocumentsTheDataStandsBesideTheProgram) {
  machine.Fail("SHGetFolderPathW", 1000, ERROR_FILE_NOT_FOUND);
  Start();
  EXPECT_TRUE(std::filesystem::is_directory(machine.disk.HostPath(u"C:\\Program Files\\Veltra\\Sarvik5")));
}

// A library that another one needs is looked for as carefully, and a damaged one raises no box.
TEST_F(Startup, LibrariesComeFromTheProgramsFolderAndWindowsAlone) {
  const uint32_t places = LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32;
  for (const bool isOld : {false, true}) {  // Windows 7 without its updates knows no places by name
    if (isOld) machine.Fail("GetProcAddress", 2, ERROR_PROC_NOT_FOUND);
    const size_t before = tablet.Mark();
    Start();
    const auto loaded = pal::Select<pal::ModuleLoaded>(tablet.Since(before));
    ASSERT_GE(loaded.size(), 3U);
    for (const auto& library : loaded) {
      EXPECT_EQ(library.search.errorMode, UINT{SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX});
      EXPECT_EQ(library.search.places, isOld ? 0 : places);
      EXPECT_FALSE(library.search.usesCurrentDirectory);
      const bool isFirst = &library == loaded.data();
      EXPECT_EQ(library.flags, isOld && isFirst
                                   ? LOAD_WITH_ALTERED_SEARCH_PATH
                                   : LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    }
    EXPECT_TRUE(tablet.Quit());
  }
}

// The mutex of a copy with higher rights cannot be opened.
TEST_F(Startup, ACopyWithHigherRightsIsEnough) {
  machine.Fail("CreateMutexW", 1, ERROR_ACCESS_DENIED);
  tablet.Start();
  tablet.Advance(5s);
  EXPECT_EQ(machine.ExitCode(), 6);
  EXPECT_TRUE(New<pal::ModuleLoaded>().empty());
  machine.Fail("CreateMutexW", 1, ERROR_NOT_ENOUGH_MEMORY);  // nobody is there: the switches must work
  Start();
  EXPECT_NE(tablet.MainWindow(), nullptr);
}

// Each box with its picture, its buttons and the window that waits for it.
TEST_F(Startup, Boxes) {
  const HWND nobody = nullptr;
  const auto expect = [&](const char* caption, const char* text, UINT type, HWND owner) {
    ASSERT_TRUE(Box());
    EXPECT_EQ(Joined(Did({"box"})), "box \"" + std::string(caption) + "\": " + text);
    EXPECT_EQ(Box()->type, type);
    EXPECT_EQ(Box()->owner, owner);
    machine.boxes.Answer(type == MB_YESNO ? IDNO : IDOK);
    tablet.Advance(10ms);
  };
  tablet.Start(u"-s /? -v5");
  tablet.Advance(1s);
  EXPECT_EQ(tablet.MainWindow(), nullptr);
  expect("Help", "Hoe gebruiken?", MB_OK, nobody);
  simulator::TheBoard().initializeError = 3;
  tablet.Start();
  tablet.Advance(5s);
  expect("I2CInit", "Error during KEApiLibInitialize: 3", MB_ICONERROR, nobody);
  tablet.Advance(300s);
  machine.desktop.Post(tablet.MainWindow(), WM_COMMAND, 40205, 0);
  tablet.Advance(10ms);
  expect("Sarvik5",
         "Manufacturer: Nordcell\\nManufacturer date: 2023-05-17\\nSerial: 4711\\nDevice name: NC-7S2P\\n"
         "Chemistry: LION\\nTemperature: 2981\\nVoltage: 11782\\nCurrent: -1240\\nRemaining capacity: 5160\\n"
         "Status: 00C0\\nCycles: 37\\nDesign capacity: 6800\\nDesign voltage: 11100",
         MB_ICONINFORMATION, tablet.MainWindow());
  machine.desktop.Post(tablet.MainWindow(), WM_COMMAND, 128, 0);
  tablet.Advance(10ms);
  expect("Sarvik5",
         "Some features of the device will stop working if you close this tool. Are you sure you want to "
         "continue?",
         MB_YESNO, tablet.MainWindow());
}

TEST_F(Startup, OfOneKindOneBoxStands) {
  SetUserValue(u"Sw1CmdVal", -1);
  Start();
  for (int n = 0; n < 300; ++n)
    for (const WPARAM command : {40205U, 128U})
      machine.desktop.Post(tablet.MainWindow(), WM_COMMAND, command, 0);
  tablet.Advance(1s);
  EXPECT_EQ(machine.boxes.Shown().size(), 2U);
  Press(simulator::Button::kSwitch1);
  EXPECT_EQ(New<pal::MouseInput>().size(), 1U);
  machine.boxes.Answer(IDNO);
  tablet.Advance(1s);
  machine.desktop.Post(tablet.MainWindow(), WM_COMMAND, 128, 0);
  tablet.Advance(1s);
  EXPECT_EQ(machine.boxes.Shown().size(), 2U);  // it may be asked again
}

// Nobody finds it by its class.
TEST_F(Startup, AWindowOrItsClassThatIsRefusedKeepsTheToolFromNothing) {
  SetUserValue(u"Sw1CmdVal", -1);
  machine.Fail("RegisterClassExW", 1, ERROR_NOT_ENOUGH_MEMORY);
  machine.Fail("CreateWindowExW", 2, ERROR_NOT_ENOUGH_MEMORY);
  machine.Fail("ChangeWindowMessageFilterEx", 1, ERROR_ACCESS_DENIED);
  Start();
  tablet.Advance(1s);
  EXPECT_NE(Log().find(">_<    ChangeWindowMessageFilterEx: Windows error 5\r\n"), std::string::npos)
      << Log();
  EXPECT_EQ(tablet.MainWindow(), nullptr);
  Press(simulator::Button::kSwitch1);
  EXPECT_EQ(New<pal::MouseInput>().size(), 1U);
}

// ---- the end of the session -------------------------------------------------------------------------------

size_t BoardStops(const std::vector<pal::Effect>& effects) {
  size_t stops = 0;
  for (const auto& call : pal::Select<pal::DeviceCall>(effects))
    stops += call.device == "board" && call.call.starts_with("uninitialize");
  return stops;
}

TEST_F(Startup, TheEndOfTheSessionShutsDownOnce) {
  Start();
  EXPECT_EQ(tablet.Ask(WM_ENDSESSION, FALSE), 0);
  tablet.Advance(1s);
  EXPECT_FALSE(machine.ExitCode());
  machine.desktop.Post(tablet.MainWindow(), WM_APP + 0xCD, 0x55, 2);  // bytes that are still on their way
  EXPECT_EQ(tablet.Ask(WM_ENDSESSION, TRUE), 0);
  tablet.Advance(1s);
  EXPECT_EQ(machine.ExitCode(), 0);
  EXPECT_EQ(BoardStops(tablet.Since(0)), 1U);
  EXPECT_TRUE(New<pal::RegistryWrite>().empty());
}

// Windows delivers the end while the tool waits for another program: what it was about to do to the board is
// too late.
TEST_F(Startup, NothingReachesTheBoardWhenTheSessionEndedMeanwhile) {
  SetUserValue(u"DisableUSBBack", 1);
  Start();
  tablet.SendPowerEvent(PBT_APMSUSPEND);
  const HWND desktop = GetDesktopWindow();
  machine.desktop.SetHung(desktop, true);
  tablet.SendPowerEvent(PBT_APMRESUMEAUTOMATIC);
  tablet.Advance(2s);  // the display is to go on: the tool waits
  EXPECT_EQ(tablet.Ask(WM_ENDSESSION, TRUE), 0);
  EXPECT_EQ(BoardStops(tablet.Since(0)), 1U);
  New<pal::DeviceCall>();
  machine.desktop.SetHung(desktop, false);
  tablet.Advance(2s);
  EXPECT_EQ(machine.ExitCode(), 0);
  EXPECT_TRUE(New<pal::DeviceCall>().empty());
}

}  // namespace
}  // namespace veltra
