// Firmware updates of the whole tool against the simulated controller: what the person reads, and what the
// flash holds.
#include <algorithm>
#include <cstdlib>
#include <new>

#include "firmware/flash_image.h"
#include "pal/machine/person.h"
#include "simulator/firmware_file.h"
#include "tests/tool_test.h"

size_t refusedSize = 0;

void* operator new(size_t size) {
  const bool isRefused = size == refusedSize;
  if (isRefused) refusedSize = 0;
  void* memory = isRefused ? nullptr : std::malloc(size);
  if (!memory) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, size_t) noexcept {
  std::free(memory);
}

namespace veltra {
namespace {

using pal::person::FrontDialog;
using pal::person::Look;
using simulator::AddFirmwareRow;
using simulator::Fault;
using simulator::FirmwareBytes;
using simulator::Flash;
using simulator::FlashAfterUpdate;
using simulator::HexText;

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

FirmwareBytes Rows(const std::vector<uint32_t>& rows) {
  FirmwareBytes bytes;
  for (const uint32_t row : rows) AddFirmwareRow(bytes, row);
  return bytes;
}

// One tablet for many updates: each leaves the controller with a firmware, or in its bootloader.
class FirmwareUpdate : public ToolTest {
 protected:
  void SetUp() override {
    SetUserValue(u"StartupDelay", 0);
    Start();
    tablet.Advance(20s);  // until the codec is up as well
    pic.OnTraffic([this](const simulator::Traffic& traffic) {
      if (traffic.direction == simulator::Traffic::Direction::kFromTool)
        fromTool.push_back(Describe(traffic));
    });
  }

  void Begin(std::string_view hexText) {
    machine.disk.Write(kFile, hexText);
    const std::span<const uint8_t> flash = pic.bootloader.Memory().Bytes();
    before.assign(flash.begin(), flash.end());
    fromTool.clear();
    tablet.SendUpdate(kFile);
  }
  // The text when the person may press OK.
  std::u16string AwaitEnd() {
    EXPECT_TRUE(machine.clock.AdvanceUntil([] { return Look(IDOK).isEnabled; }, 120s));
    EXPECT_TRUE(Look(IDOK).hasFocus);
    return Look(kText).text;
  }
  std::u16string Update(const FirmwareBytes& bytes) {
    Begin(HexText(bytes));
    EXPECT_EQ(Look(kText).text, kStarted);
    EXPECT_FALSE(Look(IDOK).isEnabled);
    return AwaitEnd();
  }
  // What no failed update may leave behind: the next one succeeds.
  void ExpectUpdate(const FirmwareBytes& bytes) {
    EXPECT_EQ(Update(bytes), kSucceeded);
    ExpectFlashOf(bytes);
  }
  // The tool counts spoilt frames over its whole life: it asks for the first two again, and not for the
  // third.
  void BeginCountOfSpoiltFrames() {
    do {
      fromTool.clear();
      pic.SendRaw(ToBytes("\x55\x55\x01\x04"));
      tablet.Advance(20ms);
    } while (!fromTool.empty());
  }
  void ExpectFlashOf(const FirmwareBytes& bytes) {
    EXPECT_TRUE(std::ranges::equal(pic.bootloader.Memory().Bytes(), FlashAfterUpdate(before, bytes)));
  }

  simulator::Controller& pic = tablet.Pic();
  std::vector<uint8_t> before;  // the flash at the latest Begin
  Texts fromTool;               // since then
};

TEST_F(FirmwareUpdate, LeavesTheFlashAsTheFileSays) {
  FirmwareBytes all;  // of which the window is taken
  for (uint32_t row = 0; row < Flash::kSize + 0x1000; row += Flash::kRowSize) AddFirmwareRow(all, row, 2);
  const FirmwareBytes scattered = {{0x0000, 1},  {0x17FF, 2},  {0x1800, 3},  {0x5A02, 4},  {0x127FF, 0},
                                   {0x12850, 6}, {0x12900, 7}, {0x147FF, 0}, {0x14800, 9}, {0x20000, 10}};
  const struct {
    FirmwareBytes bytes;
    int steps;                                 // pages, rows twice, and the finish
  } kFiles[] = {{Rows({0x12700}), 1 + 2 + 1},  // beside the controller's own row, which stays
                {Rows({0x1F00, 0x2000}), 2 + 4 + 1},
                {Rows(simulator::ProgrammableRows()), 38 + 2 * 303 + 1},
                {all, 38 + 2 * 303 + 1},
                {scattered, 5 + 2 * 5 + 1},
                {Rows({0x1800, 0x1900}), 1 + 4 + 1}};
  for (const auto& file : kFiles) {
    SCOPED_TRACE(file.steps);
    ExpectUpdate(file.bytes);
    EXPECT_EQ(Look(kBar).highest, file.steps);
    if (&file == kFiles) {  // later ones begin where the bar stands
      EXPECT_EQ(Look(kBar).position, file.steps);
    }
  }
  EXPECT_EQ(fromTool,
            (Texts{"GotoBootloader", "erase page 0x01800", "erase page 0x01800", "write row 0x01800",
                   "write row 0x01900", "read row 0x01800", "read row 0x01900", "finish"}));
  EXPECT_EQ(pic.Violations(), Texts());
}

// Two rows of one page: step 1 enters the bootloader, 2 erases, 3 and 4 write, 5 and 6 read back, 7 finishes.
struct FaultCase {
  Fault fault;
  int times;
  std::vector<std::u16string_view> reasons;  // for each step; empty: it succeeds, "-": there is no such fault
};

constexpr std::u16string_view kNothing = u"-";
const std::vector<std::u16string_view> kSilent = {u"time-out 1", u"time-out 2", u"time-out 3", u"time-out 3",
                                                  u"time-out 4", u"time-out 4", u"time-out 5"};
const std::vector<std::u16string_view> kHealed(7);
// Where it was, in the log, when the controller fell silent.
constexpr const char* kPlaces[] = {"entering the bootloader",
                                   "erasing page 0x01800",
                                   "writing row 0x01800",
                                   "writing row 0x01900",
                                   "reading back row 0x01800",
                                   "reading back row 0x01900",
                                   "finishing"};

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
    {Fault::kTwice, 1, kHealed},
    {Fault::kAddress, 1, {kNothing, kNothing, kNothing, kNothing, u"error -101", u"error -101", kNothing}},
    {Fault::kStuckBit, 1, {kNothing, kNothing, u"error -103", u"error -103", kNothing, kNothing, kNothing}},
};

TEST_F(FirmwareUpdate, EveryFaultAtEveryStepEndsInItsTextAndASecondUpdateSucceeds) {
  const FirmwareBytes bytes = Rows({0x1800, 0x1900});
  for (const FaultCase& row : kFaults)
    for (int step = 1; step <= 7; ++step) {
      const std::u16string_view reason = row.reasons[static_cast<size_t>(step - 1)];
      if (reason == kNothing) continue;
      SCOPED_TRACE(testing::Message()
                   << "fault " << static_cast<int>(row.fault) << " x " << row.times << " at step " << step);
      machine.disk.Remove(simulator::SimulatedTablet::kLogFile);
      BeginCountOfSpoiltFrames();
      for (int n = 0; n < row.times; ++n) pic.ArmAtStep(step, row.fault);
      ASSERT_EQ(Update(bytes), reason.empty() ? kSucceeded : Failed(reason));
      if (reason.empty()) ExpectFlashOf(bytes);
      EXPECT_EQ(Log().find("Firmware update") == std::string::npos, reason.empty());
      if (row.reasons == kSilent) {
        EXPECT_NE(Log().find(std::string(kPlaces[step - 1]) + ": no answer"), std::string::npos) << Log();
      }
      pic.RestorePower();
      tablet.Advance(1s);  // what is still on the line passes
      ExpectUpdate(bytes);
    }
}

TEST_F(FirmwareUpdate, APowerLossAtAnyMomentIsMendedByASecondUpdate) {
  const FirmwareBytes bytes = Rows({0x1800, 0x1900, 0x2000});
  int losses = 0;
  for (auto moment = 1ms; moment < 200ms; moment += 3ms) {
    SCOPED_TRACE(moment.count());
    machine.clock.After(moment, [&] { pic.CutPower(); });
    if (Update(bytes) == kSucceeded)
      ExpectFlashOf(bytes);
    else
      ++losses;
    tablet.Advance(200ms);  // the power may fail only now
    pic.RestorePower();
    tablet.Advance(1s);
    ExpectUpdate(bytes);
  }
  EXPECT_GT(losses, 30);
}

TEST_F(FirmwareUpdate, AFileThatCannotBeUsedStartsNothing) {
  EXPECT_FALSE(FrontDialog().has_value());
  for (const std::string& text :
       {HexText({{0x0000, 1}, {0x12850, 2}, {0x14800, 3}}), HexText(Rows({0x1800})) + "no HEX file\r\n"}) {
    Begin(text);
    EXPECT_EQ(AwaitEnd(), kNotStarted);
  }
  EXPECT_NE(Log().find("refused, line 18 breaks the rule: a line begins with"), std::string::npos) << Log();
  machine.disk.Hold(kFile, true);  // another program works on it
  Begin(HexText(Rows({0x1800})));
  EXPECT_EQ(AwaitEnd(), kNotStarted);
  machine.disk.Hold(kFile, false);
  tablet.SendData(nullptr, 2, {});  // no name
  EXPECT_EQ(AwaitEnd(), kNotStarted);
  tablet.Advance(10s);
  EXPECT_EQ(fromTool, Texts());
}

// The memory for the images, and for a row that is sent.
TEST_F(FirmwareUpdate, MemoryThatIsRefusedLeavesTheDialogWithAnEnd) {
  const FirmwareBytes bytes = Rows({0x1800});
  refusedSize = Flash::kSize / Flash::kRowSize * sizeof(FlashRow);
  Begin(HexText(bytes));
  EXPECT_EQ(AwaitEnd(), kNotStarted);
  refusedSize = 1 + 4 + Flash::kRowSize;
  EXPECT_EQ(Update(bytes), Failed(u"time-out 3"));
  EXPECT_EQ(refusedSize, 0U);
  EXPECT_EQ(New<pal::SessionHeld>().back().reason, u"");
  ExpectUpdate(bytes);
}

// ---- the dialog

TEST_F(FirmwareUpdate, TheDialogIsOnTopAndEndsWithThePowerOff) {
  Begin(HexText(Rows({0x1800})));
  const auto dialog = FrontDialog();
  ASSERT_TRUE(dialog.has_value());
  EXPECT_EQ(dialog->title, u"Firmware");
  EXPECT_TRUE(dialog->isTopmost);
  AwaitEnd();
  machine.desktop.Post(dialog->window, WM_COMMAND, IDCANCEL, 0);
  tablet.Advance(100ms);
  EXPECT_TRUE(FrontDialog().has_value());
  EXPECT_TRUE(New<pal::WindowsExit>().empty());

  for (const char* refused : {"OpenProcessToken", "AdjustTokenPrivileges", ""}) {  // or nothing is
    if (*refused) machine.Fail(refused, 1, *refused == 'O' ? ERROR_ACCESS_DENIED : ERROR_NOT_ALL_ASSIGNED);
    pal::person::Press(IDOK);
    tablet.Advance(100ms);
    EXPECT_FALSE(FrontDialog().has_value());
    const auto exits = New<pal::WindowsExit>();
    ASSERT_EQ(exits.size(), *refused ? 0U : 1U) << refused;
    if (!*refused) {
      EXPECT_EQ(exits[0].flags, 0x19U);
      EXPECT_EQ(exits[0].reason, 0x80000000U);
    }
    Begin("");  // shows it again
  }
}

TEST_F(FirmwareUpdate, TheOptionsAskForTheFile) {
  constexpr UINT kFirmwareFileRequest = WM_APP + 0x76E;
  machine.disk.Write(kFile, HexText(Rows({0x1800})));
  for (const bool chosen : {false, true}) {
    machine.desktop.Post(tablet.MainWindow(), kFirmwareFileRequest, 0, 0);
    tablet.Advance(10ms);
    ASSERT_EQ(pal::person::OpenFileBoxes().size(), 1U);
    const pal::OpenFileBox box = pal::person::OpenFileBoxes().front();
    EXPECT_EQ(box.owner, tablet.MainWindow());
    EXPECT_EQ(box.filters, (decltype(box.filters){{u"Firmware update files", u"*.hex"}}));
    EXPECT_EQ(box.defaultExtension, u"hex");
    EXPECT_EQ(box.initialName, u"");
    EXPECT_EQ(box.flags, 0x80800U);
    pal::person::AnswerFileBox(chosen ? std::optional(std::u16string(kFile)) : std::nullopt);
    tablet.Advance(10ms);
    EXPECT_EQ(FrontDialog().has_value(), chosen);
  }
  EXPECT_EQ(AwaitEnd(), kSucceeded);
}

}  // namespace
}  // namespace veltra
