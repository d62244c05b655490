// Firmware updates of the whole tool against the simulated controller: what the person reads, and what the
// flash holds.
#include <algorithm>

#include "pal/person.h"
#include "simulator/firmware_file.h"
#include "tests/tool_test.h"

namespace veltra {
namespace {

using pal::person::FrontDialog;
using pal::person::Look;
using simulator::AddFirmwareRow;
using simulator::Controller;
using simulator::Fault;
using simulator::FirmwareBytes;
using simulator::Flash;
using simulator::FlashAfterUpdate;
using simulator::HexText;
using simulator::SimulatedTablet;
using simulator::Traffic;
using Texts = std::vector<std::string>;

constexpr int kText = 1121;
constexpr int kBar = 1122;
constexpr std::u16string_view kFile = u"C:\\Users\\Public\\Documents\\new.hex";

constexpr std::u16string_view kStarted =
    u"Performing firmware update.\n\nPlease wait....\n\nDo not turn off your device!";
constexpr std::u16string_view kNotStarted =
    u"Could not start firmware update.\n\nTurn off the device and try again!";
constexpr std::u16string_view kSucceeded =
    u"Firmware was updated successfully. Windows will exit after you press OK.\r\n\r\n"
    u"Press the reset-button when the screen turns black.";

std::u16string Failed(std::u16string_view reason) {
  return std::u16string(u"Could not update firmware (") + std::u16string(reason) +
         u")\n\nDevice should be restarted.\nPlease retry the update after restart!";
}

FirmwareBytes Rows(const std::vector<uint32_t>& rows, uint32_t version = 1) {
  FirmwareBytes bytes;
  for (const uint32_t row : rows) AddFirmwareRow(bytes, row, version);
  return bytes;
}

// A tablet on which the tool has settled.
class UpdatedTablet {
 public:
  UpdatedTablet() {
    machine.SetRegistryDword(HKEY_CURRENT_USER, SimulatedTablet::kUserKey, u"StartupDelay", 0);
    EXPECT_TRUE(tablet.StartAndSettle());
    tablet.Advance(20s);  // until the codec is up as well
    pic.OnTraffic([this](const Traffic& traffic) {
      if (traffic.direction == Traffic::Direction::kFromTool) fromTool.push_back(Describe(traffic));
    });
  }

  void Begin(const FirmwareBytes& bytes) {
    machine.WriteFile(kFile, HexText(bytes));
    const std::span<const uint8_t> flash = pic.bootloader.Memory().Bytes();
    before.assign(flash.begin(), flash.end());
    tablet.SendUpdate(kFile);
  }
  // Until the person may press OK.
  std::u16string AwaitEnd() {
    EXPECT_TRUE(machine.AdvanceUntil([] { return Look(IDOK).isEnabled; }, 120s));
    return Text();
  }
  std::u16string Update(const FirmwareBytes& bytes) {
    Begin(bytes);
    return AwaitEnd();
  }
  std::u16string Text() { return Look(kText).text; }
  std::string Log() { return machine.ReadFile(SimulatedTablet::kLogFile).value_or(""); }
  bool HasLogged(std::string_view text) { return Log().find(text) != std::string::npos; }

  void ExpectFlashOf(const FirmwareBytes& bytes) {
    EXPECT_TRUE(std::ranges::equal(pic.bootloader.Memory().Bytes(), FlashAfterUpdate(before, bytes)));
  }

  SimulatedTablet tablet;
  pal::Machine& machine = tablet.Machine();
  Controller& pic = tablet.Pic();
  std::vector<uint8_t> before;  // the flash at the latest Begin
  Texts fromTool;
};

TEST(FirmwareUpdate, LeavesTheFlashAsTheFileSays) {
  const struct {
    const char* name;
    FirmwareBytes bytes;
    int steps;  // pages, rows twice, and the finish
  } kFiles[] = {
      {"one row", Rows({0x1800}), 1 + 2 + 1},
      {"two rows of a page", Rows({0x1800, 0x1900}), 1 + 4 + 1},
      {"rows of two pages", Rows({0x1F00, 0x2000}), 2 + 4 + 1},
      {"every row", Rows(simulator::ProgrammableRows()), 38 + 2 * 303 + 1},
      {"the whole memory, of which the window is taken",
       [] {
         FirmwareBytes all;
         for (uint32_t row = 0; row < Flash::kSize + 0x1000; row += Flash::kRowSize) AddFirmwareRow(all, row);
         return all;
       }(),
       38 + 2 * 303 + 1},
      {"scattered bytes",
       {{0x0000, 1},
        {0x17FF, 2},
        {0x1800, 3},
        {0x5A02, 4},
        {0x127FF, 0},
        {0x12850, 6},
        {0x12900, 7},
        {0x147FF, 0},
        {0x14800, 9},
        {0x20000, 10}},
       5 + 2 * 5 + 1},
  };
  for (const auto& file : kFiles) {
    SCOPED_TRACE(file.name);
    UpdatedTablet tablet;
    EXPECT_EQ(tablet.Update(file.bytes), kSucceeded);
    tablet.ExpectFlashOf(file.bytes);
    EXPECT_EQ(Look(kBar).highest, file.steps);
    EXPECT_EQ(Look(kBar).position, file.steps);
    EXPECT_TRUE(tablet.pic.Violations().empty());
  }
}

// But for the controller's own row in the window: it is erased with its page when the others of that page are
// written.
TEST(FirmwareUpdate, TouchesNothingOutsideTheWindow) {
  constexpr uint32_t kOwnRow = 0x12800;
  const Flash factory;
  {
    UpdatedTablet tablet;
    tablet.Update(Rows(simulator::ProgrammableRows()));
    for (uint32_t row = 0; row < Flash::kSize; row += Flash::kRowSize)
      if (row < 0x1800 || row >= 0x14800) {
        EXPECT_TRUE(std::ranges::equal(tablet.pic.bootloader.Memory().Row(row), factory.Row(row))) << row;
      }
    EXPECT_EQ(tablet.pic.bootloader.Memory().Row(kOwnRow)[0], 0xFF);
  }
  UpdatedTablet other;
  other.Update(Rows({kOwnRow - 0x100}));
  EXPECT_TRUE(std::ranges::equal(other.pic.bootloader.Memory().Row(kOwnRow), factory.Row(kOwnRow)));
}

TEST(FirmwareUpdate, SendsTheFirstEraseTwiceAndNothingElse) {
  UpdatedTablet tablet;
  tablet.Update(Rows({0x1800, 0x1900}));
  EXPECT_EQ(tablet.fromTool,
            (Texts{"GotoBootloader", "erase page 0x01800", "erase page 0x01800", "write row 0x01800",
                   "write row 0x01900", "read row 0x01800", "read row 0x01900", "finish"}));
}

// Two rows of one page: step 1 enters the bootloader, 2 erases, 3 and 4 write, 5 and 6 read back, 7 finishes.
struct FaultCase {
  Fault fault;
  int times;
  std::vector<std::u16string_view>
      reasons;  // for each step; empty: the update succeeds, "-": there is no such fault
};

constexpr std::u16string_view kNone = u"-";
const std::vector<std::u16string_view> kSilent = {u"time-out 1", u"time-out 2", u"time-out 3", u"time-out 3",
                                                  u"time-out 4", u"time-out 4", u"time-out 5"};
const std::vector<std::u16string_view> kHealed(7);

const FaultCase kFaults[] = {
    // One frame that is spoilt is asked for again.
    {Fault::kFlip, 1, kHealed},
    {Fault::kDrop, 1, kHealed},
    {Fault::kDouble, 1, kHealed},
    {Fault::kGarbage, 1, kHealed},
    {Fault::kAgain, 1, kHealed},
    // The third one empties the queue.
    {Fault::kFlip, 3, kSilent},
    {Fault::kMute, 1, kSilent},
    {Fault::kPower, 1, kSilent},
    // Nobody knows what a reply without content answers, nor which row a read-back without an address is.
    {Fault::kEmpty, 1, {u"time-out 1", u"", u"", u"", u"time-out 4", u"time-out 4", u""}},
    // The second answer is taken for that of the next command.
    {Fault::kTwice, 1, {u"time-out 2", u"error -101", u"error -101", u"error -101", u"error -101", u"", u""}},
    {Fault::kAddress, 1, {kNone, kNone, kNone, kNone, u"error -101", u"error -101", kNone}},
    {Fault::kStuckBit, 1, {kNone, kNone, u"error -103", u"error -103", kNone, kNone, kNone}},
};

TEST(FirmwareUpdate, EveryFaultAtEveryStepEndsInItsTextAndASecondUpdateSucceeds) {
  const FirmwareBytes bytes = Rows({0x1800, 0x1900});
  for (const FaultCase& row : kFaults)
    for (int step = 1; step <= 7; ++step) {
      const std::u16string_view reason = row.reasons[static_cast<size_t>(step - 1)];
      if (reason == kNone) continue;
      SCOPED_TRACE(testing::Message()
                   << "fault " << static_cast<int>(row.fault) << " x " << row.times << " at step " << step);
      UpdatedTablet tablet;
      for (int n = 0; n < row.times; ++n) tablet.pic.ArmAtStep(step, row.fault);
      EXPECT_EQ(tablet.Update(bytes), reason.empty() ? kSucceeded : Failed(reason));
      if (reason.empty()) {
        tablet.ExpectFlashOf(bytes);
      } else {
        EXPECT_TRUE(tablet.HasLogged("Firmware update"));
      }
      tablet.pic.RestorePower();
      tablet.tablet.Advance(1s);  // what is still on the line passes
      EXPECT_EQ(tablet.Update(bytes), kSucceeded);
      tablet.ExpectFlashOf(bytes);
    }
}

TEST(FirmwareUpdate, APowerLossAtAnyMomentIsMendedByASecondUpdate) {
  const FirmwareBytes bytes = Rows({0x1800, 0x1900, 0x2000});
  int losses = 0;
  for (auto moment = 1ms; moment < 200ms; moment += 3ms) {
    SCOPED_TRACE(moment.count());
    UpdatedTablet tablet;
    tablet.machine.After(moment, [&] { tablet.pic.CutPower(); });
    const std::u16string text = tablet.Update(bytes);
    if (text != kSucceeded) ++losses;
    if (text == kSucceeded) tablet.ExpectFlashOf(bytes);
    tablet.tablet.Advance(200ms);  // the power may fail only now
    tablet.pic.RestorePower();
    tablet.tablet.Advance(1s);
    EXPECT_EQ(tablet.Update(bytes), kSucceeded);
    tablet.ExpectFlashOf(bytes);
  }
  EXPECT_GT(losses, 30);
}

TEST(FirmwareUpdate, AfterAFailureTheLogNamesStepRowAndByte) {
  {
    UpdatedTablet silent;
    silent.pic.ArmAtStep(4, Fault::kMute);
    silent.Update(Rows({0x1800, 0x1900}));
    EXPECT_TRUE(silent.HasLogged(">_<    writing row 0x01900: no answer\r\n")) << silent.Log();
  }
  UpdatedTablet stuck;
  stuck.pic.ArmAtStep(3, Fault::kStuckBit);
  stuck.Update(Rows({0x1800, 0x1900}));
  EXPECT_TRUE(stuck.HasLogged(">_<    reading back row 0x01800: differs at 0x01880, file ")) << stuck.Log();
}

TEST(FirmwareUpdate, AClosedPortIsATimeoutAfterFiveSeconds) {
  UpdatedTablet tablet;
  tablet.tablet.VanishPort();
  tablet.tablet.NotifyPort(false, u"COM2");
  tablet.Begin(Rows({0x1800}));
  tablet.tablet.Advance(4990ms);
  EXPECT_EQ(tablet.Text(), kStarted);
  EXPECT_FALSE(Look(IDOK).isEnabled);
  tablet.tablet.Advance(20ms);
  EXPECT_EQ(tablet.Text(), Failed(u"time-out 1"));
  EXPECT_TRUE(Look(IDOK).isEnabled);
}

TEST(FirmwareUpdate, AnAnswerThatComesLateGoesOn) {
  UpdatedTablet tablet;
  tablet.pic.bootloader.eraseTime = 6s;
  tablet.pic.bootloader.writeTime = 2s;
  const FirmwareBytes bytes = Rows({0x1800});
  EXPECT_EQ(tablet.Update(bytes), Failed(u"time-out 2"));
  tablet.tablet.Advance(2s);  // erased, and the row on its way: nobody should switch off now
  EXPECT_EQ(tablet.Text(), kStarted);
  EXPECT_FALSE(Look(IDOK).isEnabled);
  tablet.tablet.Advance(2s);
  EXPECT_EQ(tablet.Text(), kSucceeded);
  EXPECT_TRUE(Look(IDOK).hasFocus);
  tablet.ExpectFlashOf(bytes);
}

TEST(FirmwareUpdate, AFileThatCannotBeUsedStartsNothing) {
  UpdatedTablet tablet;
  EXPECT_FALSE(FrontDialog().has_value());
  const FirmwareBytes outside = {{0x0000, 1}, {0x12850, 2}, {0x14800, 3}};
  EXPECT_EQ(tablet.Update(outside), kNotStarted);
  tablet.machine.WriteFile(kFile, "no HEX file\r\n");
  tablet.tablet.SendUpdate(kFile);
  EXPECT_EQ(tablet.AwaitEnd(), kNotStarted);
  tablet.machine.RemoveFile(kFile);
  tablet.tablet.SendUpdate(kFile);
  EXPECT_EQ(tablet.AwaitEnd(), kNotStarted);
  tablet.tablet.SendData(nullptr, 2, {});
  EXPECT_EQ(tablet.AwaitEnd(), kNotStarted);
  tablet.tablet.Advance(10s);
  EXPECT_TRUE(tablet.fromTool.empty());
  EXPECT_EQ(tablet.Update(Rows({0x1800})), kSucceeded);

  // Nor behind an update that failed, with the request of another program still waiting.
  tablet.pic.ArmAtStep(2, Fault::kMute);
  EXPECT_EQ(tablet.Update(Rows({0x1800})), Failed(u"time-out 2"));
  tablet.tablet.SendData(nullptr, 0, ToBytes("IRSend"));
  tablet.fromTool.clear();
  tablet.machine.WriteFile(kFile, "no HEX file\r\n");
  tablet.tablet.SendUpdate(kFile);
  EXPECT_EQ(tablet.AwaitEnd(), kNotStarted);
  EXPECT_TRUE(tablet.fromTool.empty());
}

TEST(FirmwareUpdate, ASecondRequestWhileOneRunsIsRefused) {
  UpdatedTablet tablet;
  const FirmwareBytes bytes = Rows({0x1800, 0x1900, 0x2000, 0x3000});
  tablet.Begin(bytes);
  tablet.tablet.Advance(40ms);
  tablet.tablet.SendUpdate(u"C:\\other.hex");
  EXPECT_TRUE(tablet.HasLogged(">_<    refused, another one runs: C:\\other.hex\r\n"));
  EXPECT_EQ(tablet.AwaitEnd(), kSucceeded);
  tablet.ExpectFlashOf(bytes);
  EXPECT_EQ(std::ranges::count(tablet.fromTool, "GotoBootloader"), 1);
  const FirmwareBytes next = Rows({0x1800}, 2);
  EXPECT_EQ(tablet.Update(next), kSucceeded);
  tablet.ExpectFlashOf(next);
}

// A request that comes between stands in front of the next command, which a bootloader never lets through.
TEST(FirmwareUpdate, ARequestOfAnotherPartEndsItAndIsNamed) {
  UpdatedTablet tablet;
  tablet.Begin(Rows({0x1800}));
  tablet.tablet.Ask(SimulatedTablet::kStatusLedRequest, 1);
  EXPECT_EQ(tablet.AwaitEnd(), Failed(u"time-out 2"));
  EXPECT_TRUE(tablet.HasLogged("behind the unanswered request SetStatusLed=1")) << tablet.Log();
}

TEST(FirmwareUpdate, WindowsStaysAwakeAndUpWhileItRuns) {
  for (const bool fails : {false, true}) {
    UpdatedTablet tablet;
    const size_t mark = tablet.tablet.Mark();
    const auto held = [&] { return pal::Select<pal::SessionHeld>(tablet.tablet.Since(mark)); };
    EXPECT_NE(tablet.tablet.Ask(WM_QUERYENDSESSION), 0);
    if (fails) tablet.pic.ArmAtStep(3, Fault::kMute);
    tablet.Begin(Rows({0x1800, 0x1900}));
    EXPECT_EQ(tablet.tablet.Ask(WM_QUERYENDSESSION), 0);
    ASSERT_EQ(held().size(), 1U);
    EXPECT_EQ(held()[0].reason, u"The firmware is being updated. Please wait until the update is finished.");
    tablet.AwaitEnd();
    ASSERT_EQ(held().size(), 2U);
    EXPECT_EQ(held()[1].reason, u"");
    EXPECT_NE(tablet.tablet.Ask(WM_QUERYENDSESSION), 0);
    std::vector<uint32_t> states;
    for (const auto& state : pal::Select<pal::ExecutionState>(tablet.tablet.Since(mark)))
      states.push_back(state.flags);
    EXPECT_EQ(states, (std::vector<uint32_t>{0x80000003, 0x80000000}));
  }
}

TEST(FirmwareUpdate, TheReasonToWaitIsInTheUsersLanguage) {
  UpdatedTablet tablet;
  constexpr WPARAM kDutch = 40213;
  tablet.tablet.Ask(WM_COMMAND, kDutch);
  tablet.Begin(Rows({0x1800}));
  EXPECT_EQ(pal::Select<pal::SessionHeld>(tablet.machine.Effects()).front().reason,
            u"De firmware wordt bijgewerkt. Wacht tot de update klaar is.");
  tablet.AwaitEnd();
}

// ---- the dialog

TEST(FirmwareDialog, IsShownOnTopAndEndsWithThePowerOff) {
  UpdatedTablet tablet;
  EXPECT_FALSE(FrontDialog().has_value());
  tablet.Begin(Rows({0x1800}));
  const auto dialog = FrontDialog();
  ASSERT_TRUE(dialog.has_value());
  EXPECT_EQ(dialog->title, u"Firmware");
  EXPECT_TRUE(dialog->isTopmost);
  EXPECT_EQ(tablet.Text(), kStarted);
  EXPECT_FALSE(Look(IDOK).isEnabled);
  tablet.AwaitEnd();
  tablet.machine.Post(dialog->window, WM_COMMAND, IDCANCEL, 0);
  tablet.tablet.Advance(100ms);
  EXPECT_TRUE(FrontDialog().has_value());
  EXPECT_TRUE(pal::Select<pal::WindowsExit>(tablet.machine.Effects()).empty());

  pal::person::Press(IDOK);
  tablet.tablet.Advance(100ms);
  EXPECT_FALSE(FrontDialog().has_value());
  const auto exits = pal::Select<pal::WindowsExit>(tablet.machine.Effects());
  ASSERT_EQ(exits.size(), 1U);
  EXPECT_EQ(exits[0].flags, 0x19U);
  EXPECT_EQ(exits[0].reason, 0x80000000U);
}

TEST(FirmwareDialog, WithoutTheRightToPowerOffItIsOnlyHidden) {
  for (const char* refused : {"OpenProcessToken", "AdjustTokenPrivileges"}) {
    UpdatedTablet tablet;
    tablet.tablet.SendUpdate(u"C:\\none.hex");
    EXPECT_EQ(tablet.AwaitEnd(), kNotStarted);
    tablet.machine.Fail(refused, 1, refused[0] == 'O' ? ERROR_ACCESS_DENIED : ERROR_NOT_ALL_ASSIGNED);
    pal::person::Press(IDOK);
    tablet.tablet.Advance(100ms);
    EXPECT_FALSE(FrontDialog().has_value());
    EXPECT_TRUE(pal::Select<pal::WindowsExit>(tablet.machine.Effects()).empty()) << refused;
  }
}

TEST(FirmwareDialog, AsksForTheFileWhenTheOptionsWantAnUpdate) {
  UpdatedTablet tablet;
  constexpr UINT kFirmwareFileRequest = WM_APP + 0x76E;
  const auto open = [&] {
    tablet.machine.Post(tablet.tablet.MainWindow(), kFirmwareFileRequest, 0, 0);
    tablet.tablet.Advance(10ms);
    EXPECT_EQ(pal::person::OpenFileBoxes().size(), 1U);
  };
  open();
  const pal::OpenFileBox box = pal::person::OpenFileBoxes().front();
  EXPECT_EQ(box.owner, tablet.tablet.MainWindow());
  ASSERT_EQ(box.filters.size(), 1U);
  EXPECT_EQ(box.filters[0].first, u"Firmware update files");
  EXPECT_EQ(box.filters[0].second, u"*.hex");
  EXPECT_EQ(box.defaultExtension, u"hex");
  EXPECT_EQ(box.initialName, u"");
  EXPECT_EQ(box.flags, 0x80800U);
  pal::person::AnswerFileBox(std::nullopt);
  tablet.tablet.Advance(100ms);
  EXPECT_FALSE(FrontDialog().has_value());
  EXPECT_TRUE(tablet.fromTool.empty());

  const FirmwareBytes bytes = Rows({0x1800});
  tablet.machine.WriteFile(kFile, HexText(bytes));
  open();
  pal::person::AnswerFileBox(std::u16string(kFile));
  tablet.tablet.Advance(10ms);
  EXPECT_EQ(tablet.AwaitEnd(), kSucceeded);
}

}  // namespace
}  // namespace veltra
