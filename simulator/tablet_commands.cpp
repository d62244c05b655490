// What the simulated tablet alone can do: refusals of Windows, libraries that are missing or behave badly,
// and a taskbar that comes and goes.
#include <algorithm>

#include "simulator/board.h"
#include "simulator/controller_commands.h"
#include "simulator/joystick.h"
#include "simulator/names.h"
#include "simulator/tablet_world.h"

namespace simulator {
namespace {

SimulatedTablet& TabletOf(World& world) {
  return static_cast<TabletWorld&>(world).Tablet();
}

std::string_view Argument(Words words, size_t index) {
  return index < words.size() ? std::string_view(words[index]) : std::string_view();
}

Problem RunFail(World& world, Words words) {
  if (words.size() == 2 && words[1] == "off") return TabletOf(world).Machine().FailNoMore(), Problem();
  const std::optional<int64_t> times = words.size() == 3 ? ParseNumber(words[2]) : std::nullopt;
  if (!times || *times < 1 || *times > 1'000'000) return ExpectedArguments("FUNCTION TIMES|off");
  if (std::ranges::find(kFunctions, words[1]) == std::end(kFunctions))
    return "no such function: " + words[1] + ", \"help fail\" lists them";
  TabletOf(world).Machine().Fail(words[1], static_cast<int>(*times), ERROR_ACCESS_DENIED);
  return {};
}

Problem RunJoystick(World& world, Words words) {
  struct Row {
    std::string_view word;
    Joystick state;
  };
  constexpr auto kNobody = Joystick::Owner::kNobody;
  constexpr Row kStates[] = {
      {"free", {}},
      {"disabled", {.enabled = false}},
      {"mismatch", {.versionsMatch = false}},
      {"busy", {.owner = Joystick::Owner::kAnotherProgram}},
      {"taken", {.acquireFails = true, .owner = kNobody}},
  };
  const std::string_view word = Argument(words, 1);
  if (words.size() == 2 && word == "absent") {
    TabletOf(world).TheDesk().Remove(Library::kJoystick);
    return {};
  }
  const auto* row = std::ranges::find(kStates, word, &Row::word);
  if (row == std::end(kStates) || words.size() != 2)
    return ExpectedArguments("absent|free|disabled|mismatch|busy|taken");
  TheJoystick() = row->state;
  return {};
}

Problem RunMouseFilter(World& world, Words words) {
  const std::string_view word = Argument(words, 1);
  if (words.size() != 2 || (word != "absent" && word != "plain")) return ExpectedArguments("absent|plain");
  if (word == "absent")
    TabletOf(world).TheDesk().Remove(Library::kMouseFilter);
  else
    TabletOf(world).TheDesk().InstallPlainMouseFilter();
  return {};
}

Problem RunBoard(World& world, Words words) {
  const std::string_view word = Argument(words, 1);
  Desk& desk = TabletOf(world).TheDesk();
  if (words.size() == 2 && word == "absent") return desk.Remove(Library::kBoard), Problem();
  if (words.size() == 2 && word == "damaged") return desk.Damage(Library::kBoard), Problem();
  if (words.size() == 3 && word == "lacks")
    return desk.Install(Library::kBoard, words[2]) ? Problem() : "the library has no such export";
  constexpr uint8_t kCodec = 0x38;
  const std::optional<int64_t> error = words.size() == 3 ? ParseNumber(words[2]) : std::nullopt;
  const auto code = static_cast<int32_t>(error.value_or(0));
  struct Row {
    std::string_view word;
    int32_t Board::*error;
  };
  constexpr Row kErrors[] = {{"start-error", &Board::initializeError},
                             {"stop-error", &Board::uninitializeError},
                             {"info-error", &Board::boardInfoError},
                             {"serves-messages", &Board::servesMessages}};
  if (error && word == "codec-errors") {
    TheBoard().failures = {{kCodec, code}};
    return {};
  }
  const auto* row = std::ranges::find(kErrors, word, &Row::word);
  if (!error || row == std::end(kErrors))
    return ExpectedArguments("absent|damaged|lacks EXPORT|start-error CODE|..., \"help\" lists them");
  TheBoard().*(row->error) = code;
  return {};
}

Problem RunMacroPlugin(World& world, Words words) {
  struct Row {
    std::string_view language;
    Library library;
  };
  constexpr Row kPlugins[] = {{"english", Library::kEnglishMacros}, {"dutch", Library::kDutchMacros}};
  const auto* row = std::ranges::find(kPlugins, Argument(words, 1), &Row::language);
  if (row == std::end(kPlugins) || words.size() != 3 || words[2] != "absent")
    return ExpectedArguments("english|dutch absent");
  TabletOf(world).TheDesk().Remove(row->library);
  return {};
}

Problem RunShell(World& world, Words words) {
  struct Row {
    std::string_view word;
    void (pal::NotificationArea::*act)();
  };
  constexpr Row kActs[] = {{"stop", &pal::NotificationArea::StopShell},
                           {"start", &pal::NotificationArea::StartShell},
                           {"restart", &pal::NotificationArea::RestartShell},
                           {"announce", &pal::NotificationArea::Announce}};
  const auto* row = std::ranges::find(kActs, Argument(words, 1), &Row::word);
  if (row == std::end(kActs) || words.size() != 2) return ExpectedArguments("stop|start|restart|announce");
  (TabletOf(world).Machine().tray.*row->act)();
  return {};
}

Problem RunScreen(World& world, Words words) {
  struct Row {
    std::string_view word;
    bool isLocked;
    int64_t told;  // 0: nothing
  };
  constexpr Row kScreens[] = {{"lock", true, WTS_SESSION_LOCK},
                              {"unlock", false, WTS_SESSION_UNLOCK},
                              {"cover", true, 0},
                              {"uncover", false, 0}};
  const auto* row = std::ranges::find(kScreens, Argument(words, 1), &Row::word);
  if (row == std::end(kScreens) || words.size() != 2) return ExpectedArguments("lock|unlock|cover|uncover");
  TabletOf(world).Machine().desktop.isLocked = row->isLocked;
  if (row->told != 0) world.Ask(WM_WTSSESSION_CHANGE, row->told, 0);
  return {};
}

Problem RunScaling(World& world, Words words) {
  constexpr int64_t kUnscaledDpi = 96;
  const std::optional<int64_t> percent = words.size() == 2 ? ParseNumber(words[1]) : std::nullopt;
  if (!percent || *percent < 100 || *percent > 500) return ExpectedArguments("PERCENT");
  TabletOf(world).Machine().desktop.dpi = static_cast<UINT>(*percent * kUnscaledDpi / 100);
  return {};
}

constexpr WorldCommand kCommands[] = {
    {"fail", "FUNCTION TIMES|off", "Windows refuses the next calls of that function, such as ExitWindowsEx",
     RunFail},
    {"joystick", "absent|free|disabled|...", "the virtual joystick; also mismatch, busy, taken", RunJoystick},
    {"mouse-filter", "absent|plain", "the mouse filter's library: none, or its 64-bit form", RunMouseFilter},
    {"board", "absent|damaged|lacks EXPORT|...",
     "the board's library; also start-error, stop-error, info-error, codec-errors, serves-messages NUMBER",
     RunBoard},
    {"macro-plugin", "english|dutch absent", "the macro plug-in of that language is missing", RunMacroPlugin},
    {"scaling", "PERCENT", "the display's scaling, from the next icon on", RunScaling},
    {"screen", "lock|unlock|cover|uncover", "Windows' own desktop has the screen, or no more", RunScreen},
    {"shell", "stop|start|restart|announce",
     "the taskbar goes, comes, restarts, or only says that it is there", RunShell},
};

}  // namespace

std::span<const WorldCommand> TabletWorld::Commands() const {
  return kCommands;
}

}  // namespace simulator
