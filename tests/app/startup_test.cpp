#include "pal/person.h"
#include "simulator/board.h"
#include "simulator/joystick.h"
#include "tests/tool_test.h"

namespace veltra {
namespace {

using simulator::Button;
using simulator::SimulatedTablet;
using Texts = std::vector<std::string>;

class Startup : public ToolTest {
 protected:
  Startup() {
    simulator::TheJoystick() = {};
    simulator::TheBoard() = {};
  }
  std::optional<pal::OpenMessageBox> Box() {
    const auto boxes = machine.OpenMessageBoxes();
    return boxes.empty() ? std::nullopt : std::optional(boxes.back());
  }
};

TEST_F(Startup, WaitsItsDelayAndAsksTheControllerOneThingAfterTheOther) {
  SetUserValue(u"StartupDelay", 2500);
  SwitchDetailsOn();
  tablet.Start();
  tablet.Advance(2499ms);
  EXPECT_TRUE(New<pal::SerialOpened>().empty());
  tablet.Advance(5s);
  EXPECT_EQ(New<pal::SerialOpened>().size(), 1U);
  EXPECT_EQ(NewRequests(), (Texts{"Ready",
                                  "GetSerial",
                                  "GetPCBSerial",
                                  "GetPCBVersion",
                                  "GetTouchSerial",
                                  "GetTouchVersion",
                                  "GetTouchFirmware",
                                  "GetBatteryManufacturer",
                                  "GetBatteryManufactureDate",
                                  "GetBatterySerial",
                                  "GetBatteryDeviceName",
                                  "GetBatteryChemistry",
                                  "GetBatteryTemperature",
                                  "GetBatteryVoltage",
                                  "GetBatteryCurrent",
                                  "GetBatteryRemainingCapacity",
                                  "GetBatteryStatus",
                                  "GetBatteryCycles",
                                  "GetBatteryDesignCapacity",
                                  "GetBatteryDesignVoltage",
                                  "EnableBT=1",
                                  "EnableGsm=1"}));
  EXPECT_TRUE(tablet.Pic().Violations().empty());
  EXPECT_NE(Log().find("Startup. . . . . .  ***    Application starting\r\n"), std::string::npos) << Log();
  EXPECT_NE(Log().find("Serial recv. . . .  ***    " + tablet.Pic().identity.serial), std::string::npos)
      << Log();
}

TEST_F(Startup, ANegativeDelayIsNone) {
  SetUserValue(u"StartupDelay", -1);
  tablet.Start();
  tablet.Advance(1ms);
  EXPECT_EQ(New<pal::SerialOpened>().size(), 1U);
}

TEST_F(Startup, EndsWithTheDialogThatTheCommandLineAsksFor) {
  const std::pair<std::u16string_view, std::u16string_view> rows[] = {
      {u"", u"Power meter"}, {u"-v5", u"Options"}, {u"/S", u""}, {u"-v5 -silent", u""}};
  for (const auto& [arguments, title] : rows) {
    Start(arguments);
    const auto dialog = pal::person::FrontDialog();
    EXPECT_EQ(dialog ? dialog->title : u"", title);
    machine.Post(tablet.MainWindow(), WM_CLOSE, 0, 0);  // as after a power-off, with the dialog open
    tablet.Advance(5s);
    EXPECT_EQ(machine.ExitCode(), 0);
    EXPECT_EQ(machine.CountOpen("window"), 0);
  }
}

TEST_F(Startup, ASecondCopyCallsTheFirstAndLeaves) {
  machine.AddForeignMutex(u"VeltraInternal");
  machine.AddForeignWindow(u"VeltraInternal");
  tablet.Start();
  tablet.Advance(10s);
  EXPECT_EQ(machine.ExitCode(), 6);
  const auto sent = pal::Select<pal::ForeignMessageSent>(tablet.Since(0));
  ASSERT_EQ(sent.size(), 1U);
  EXPECT_EQ(sent[0].message, static_cast<uint32_t>(WM_COMMAND));
  EXPECT_EQ(sent[0].wParam, 127U);
  EXPECT_TRUE(pal::Select<pal::RegistryWrite>(tablet.Since(0)).empty());
  EXPECT_EQ(machine.CountOpen("mutex"), 0);
}

TEST_F(Startup, HelpShowsABoxAndNothingElse) {
  tablet.Start(u"-s /? -v5");
  tablet.Advance(1s);
  ASSERT_TRUE(Box());
  EXPECT_EQ(Box()->text, u"Hoe gebruiken?");
  EXPECT_EQ(Box()->caption, u"Help");
  machine.AnswerMessageBox(IDOK);
  tablet.Advance(10s);
  EXPECT_EQ(machine.ExitCode(), 0);
  EXPECT_EQ(tablet.MainWindow(), nullptr);
  EXPECT_TRUE(New<pal::RegistryWrite>().empty());
  EXPECT_TRUE(NewRequests().empty());
}

TEST_F(Startup, ABoardLibraryThatFailsIsReportedAndTheToolGoesOn) {
  simulator::TheBoard().initializeError = 3;
  simulator::TheBoard().uninitializeError = -4;
  tablet.Start();
  tablet.Advance(5s);
  ASSERT_TRUE(Box());
  EXPECT_EQ(Box()->text, u"Error during KEApiLibInitialize: 3");
  EXPECT_EQ(Box()->caption, u"I2CInit");
  EXPECT_EQ(Box()->type, static_cast<UINT>(MB_ICONERROR));
  machine.AnswerMessageBox(IDOK);
  tablet.Advance(300s);  // every transfer fails, and is tried again
  EXPECT_EQ(NewRequests().size(), 22U);
  EXPECT_TRUE(machine.Post(tablet.MainWindow(), WM_CLOSE, 0, 0));
  tablet.Advance(60s);
  ASSERT_TRUE(Box());
  EXPECT_EQ(Box()->text, u"Error during KEApiLibUnInitialize: -4");
  EXPECT_EQ(Box()->caption, u"I2CDeinit");
  machine.AnswerMessageBox(IDOK);
  tablet.Advance(1s);
  EXPECT_EQ(machine.ExitCode(), 0);
}

TEST_F(Startup, MissingLibrariesAreAnOrdinaryState) {
  for (const auto library :
       {simulator::Library::kJoystick, simulator::Library::kMouseFilter, simulator::Library::kBoard})
    tablet.TheDesk().Remove(library);
  Start();
  Press(Button::kMiddle);
  Release(Button::kMiddle);
  EXPECT_FALSE(Box());
  EXPECT_TRUE(New<pal::DeviceCall>().empty());
  EXPECT_TRUE(tablet.Quit());
}

TEST_F(Startup, FailedRegistrationsKeepTheToolFromNothing) {
  SetUserValue(u"Sw1CmdVal", -1);
  machine.Fail("RegisterWindowMessageW", 100, ERROR_NOT_ENOUGH_MEMORY);
  machine.Fail("RegisterClassExW", 1, ERROR_NOT_ENOUGH_MEMORY);
  Start();
  EXPECT_EQ(tablet.MainWindow(), nullptr);  // nobody finds it by its class
  Press(Button::kSwitch1);
  Release(Button::kSwitch1);
  EXPECT_EQ(New<pal::MouseInput>().size(), 2U);
}

TEST_F(Startup, TheJoystickIsTakenAtStartAndGivenBackAtTheEnd) {
  Start();
  EXPECT_EQ(simulator::TheJoystick().owner, simulator::Joystick::Owner::kCaller);
  EXPECT_TRUE(tablet.Quit());
  EXPECT_EQ(simulator::TheJoystick().owner, simulator::Joystick::Owner::kNobody);
}

TEST_F(Startup, AJoystickInOtherHandsStaysThere) {
  simulator::TheJoystick().owner = simulator::Joystick::Owner::kAnotherProgram;
  Start();
  EXPECT_EQ(simulator::TheJoystick().owner, simulator::Joystick::Owner::kAnotherProgram);
}

TEST_F(Startup, NothingIsLeftAfterAnOrdinaryEnd) {
  Start();
  EXPECT_TRUE(tablet.Quit());
  for (const char* kind : {"mutex", "key", "file", "window"}) EXPECT_EQ(machine.CountOpen(kind), 0) << kind;
  EXPECT_FALSE(simulator::TheBoard().initialized);
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
  machine.Post(tablet.MainWindow(), WM_APP + 0xCD, 0x55, 2);  // bytes that are still on their way
  EXPECT_EQ(tablet.Ask(WM_ENDSESSION, TRUE), 0);
  tablet.Advance(1s);
  EXPECT_EQ(machine.ExitCode(), 0);
  EXPECT_EQ(BoardStops(tablet.Since(0)), 1U);
  EXPECT_EQ(New<pal::RegistryWrite>().size(), 0U);
}

TEST_F(Startup, ASessionMayEndWhileABoxIsOpen) {
  Start();
  const uint8_t request[] = {'I', 'R', 'R', 'e', 'c', 'o', 'r', 'd'};
  ASSERT_TRUE(tablet.SendData(nullptr, 0, request));
  tablet.Advance(100ms);
  ASSERT_TRUE(Box());
  EXPECT_EQ(tablet.Ask(WM_ENDSESSION, TRUE), 0);
  tablet.Advance(1s);
  EXPECT_FALSE(Box());  // the quit message ends it
  EXPECT_EQ(machine.ExitCode(), 0);
  EXPECT_EQ(BoardStops(tablet.Since(0)), 1U);
}

TEST_F(Startup, ASessionMayEndWhileABoxOfTheStartIsOpen) {
  const struct {
    std::u16string_view caption;
    const char* call;
    int failures;
    DWORD error;
  } boxes[] = {{u"I2CInit", nullptr, 0, 0}, {u"Error termination", "CoCreateInstance", 5, DWORD(E_FAIL)}};
  for (const auto& box : boxes) {
    simulator::TheBoard().initializeError = box.call ? 0 : 7;
    if (box.call) machine.Fail(box.call, box.failures, box.error);
    const size_t before = tablet.Mark();
    tablet.Start();
    ASSERT_TRUE(machine.AdvanceUntil([&] { return Box() && Box()->caption == box.caption; }, 60s));
    EXPECT_EQ(tablet.Ask(WM_ENDSESSION, TRUE), 0);
    const size_t ended = tablet.Mark();
    tablet.Advance(10s);
    EXPECT_EQ(machine.ExitCode(), 0);
    EXPECT_EQ(BoardStops(tablet.Since(before)), 1U);
    EXPECT_TRUE(pal::Select<pal::SerialOpened>(tablet.Since(ended)).empty());
    EXPECT_TRUE(pal::Select<pal::SoundPlayed>(tablet.Since(ended)).empty());
  }
}

// Windows delivers the end while the tool waits for another program: what it was about to do to the board is
// too late.
TEST_F(Startup, NothingReachesTheBoardWhenTheSessionEndedMeanwhile) {
  SetUserValue(u"DisableUSBBack", 1);
  Start();
  tablet.SendPowerEvent(PBT_APMSUSPEND);
  const HWND desktop = GetDesktopWindow();
  machine.SetHung(desktop, true);
  tablet.SendPowerEvent(PBT_APMRESUMEAUTOMATIC);
  tablet.Advance(2s);  // the display is to go on: the tool waits
  EXPECT_EQ(tablet.Ask(WM_ENDSESSION, TRUE), 0);
  EXPECT_EQ(BoardStops(tablet.Since(0)), 1U);
  New<pal::DeviceCall>();
  machine.SetHung(desktop, false);
  tablet.Advance(2s);
  EXPECT_EQ(machine.ExitCode(), 0);
  EXPECT_TRUE(New<pal::DeviceCall>().empty());
}

TEST_F(Startup, AnUpdateBeforeItsDialogIsThereIsRefused) {
  simulator::TheBoard().initializeError = 7;
  tablet.Start();
  ASSERT_TRUE(machine.AdvanceUntil([&] { return Box().has_value(); }, 60s));
  tablet.SendUpdate(u"C:\\new.hex");
  EXPECT_NE(Log().find("refused, its dialog is not there: C:\\new.hex"), std::string::npos) << Log();
  machine.AnswerMessageBox(IDOK);
}

// ---- standby ----------------------------------------------------------------------------------------------

TEST_F(Startup, ResumeRunsOnceAfterItsDelay) {
  SetUserValue(u"WakeupDelay", 1000);
  Start();
  EXPECT_EQ(tablet.SendPowerEvent(PBT_APMRESUMEAUTOMATIC), 1);  // without a suspend: nothing
  tablet.Advance(5s);
  EXPECT_TRUE(NewRequests().empty());

  EXPECT_EQ(tablet.SendPowerEvent(PBT_APMSUSPEND), 1);
  EXPECT_EQ(tablet.SendPowerEvent(PBT_APMSUSPEND), 1);
  EXPECT_EQ(tablet.SendPowerEvent(PBT_APMRESUMEAUTOMATIC), 1);
  tablet.Advance(950ms);
  EXPECT_TRUE(NewRequests().empty());
  New<pal::Beep>();
  tablet.Advance(100ms);
  EXPECT_EQ(NewRequests(), Texts{"Ready"});
  const auto moves = New<pal::MouseInput>();
  ASSERT_EQ(moves.size(), 2U);
  EXPECT_EQ(moves[0].dy, 1);
  EXPECT_EQ(moves[1].dy, -1);
  tablet.Advance(10s);
  EXPECT_TRUE(NewRequests().empty());
}

TEST_F(Startup, ANewSuspendKeepsTheResumeFromRunning) {
  SetUserValue(u"WakeupDelay", 1000);
  Start();
  for (const WPARAM event : {PBT_APMSUSPEND, PBT_APMRESUMEAUTOMATIC, PBT_APMSUSPEND})
    tablet.SendPowerEvent(event);
  simulator::TheBoard().transfers.clear();
  tablet.Advance(10s);
  EXPECT_TRUE(NewRequests().empty());
  EXPECT_TRUE(simulator::TheBoard().transfers.empty());
}

TEST_F(Startup, WithoutADelayTheResumeRunsInsideTheNotification) {
  SetUserValue(u"WakeupDelay", 0);
  SwitchDetailsOn();
  Start();
  tablet.SendPowerEvent(PBT_APMSUSPEND);
  tablet.SendPowerEvent(PBT_APMRESUMEAUTOMATIC);
  EXPECT_EQ(New<pal::MouseInput>().size(), 2U);
  tablet.Advance(50ms);
  EXPECT_EQ(NewRequests(), Texts{"Ready"});
  for (const char* line :
       {"Suspend. . . . . .  ***    Device going to suspend", "Resume . . . . . .  ***    Device resuming\r",
        "Resume . . . . . .  ***    Device resuming from suspend"})
    EXPECT_NE(Log().find(line), std::string::npos) << line;
}

TEST_F(Startup, APortThatDiedInTheSleepIsOpenedAgainAtTheResume) {
  Start();
  tablet.SendPowerEvent(PBT_APMSUSPEND);
  tablet.VanishPort();
  tablet.Advance(1s);
  tablet.ReturnPort();
  tablet.SendPowerEvent(PBT_APMRESUMEAUTOMATIC);
  tablet.Advance(2s);
  EXPECT_EQ(NewRequests(), Texts{"Ready"});
}

}  // namespace
}  // namespace veltra
