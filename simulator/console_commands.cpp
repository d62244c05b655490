#include <algorithm>
#include <ostream>
#include <sstream>

#include "simulator/console.h"
#include "simulator/controller_commands.h"
#include "simulator/names.h"

namespace simulator {
namespace {

std::string_view Argument(Words words, size_t index) {
  return index < words.size() ? std::string_view(words[index]) : std::string_view();
}

// ---- the story
// -----------------------------------------------------------------------------------------------

Problem RunWorlds(Console& console, Words words) {
  if (words.size() < 2) return ExpectedArguments("NAME...");
  for (const std::string& name : words.subspan(1))
    if (Problem unknown = CheckName(console, "worlds", name)) return unknown;
  if (std::ranges::find(words.subspan(1), console.TheWorld().Name()) == words.end()) console.End();
  return {};
}

Problem RunWait(Console& console, Words words) {
  const auto time = words.size() == 2 ? ParseTime(words[1]) : std::nullopt;
  if (!time) return ExpectedArguments("TIME");
  console.TheWorld().Wait(*time);
  return {};
}

Problem RunMark(Console& console, Words) {
  CatchUp(console);
  console.TheTimeline().SkipToNow();
  return {};
}

Problem RunExit(Console& console, Words) {
  console.End();
  return {};
}

// ---- the tool and the person
// --------------------------------------------------------------------------------

Problem RunStart(Console& console, Words words) {
  if (console.ToolRuns()) return "the tool runs already";
  console.NoteStart();
  console.TheWorld().Start(words.size() > 1 ? JoinWords(words.subspan(1)) : "-s");
  return {};
}

// The last things that the tool does at its start are questions to the controller.
Problem RunSettle(Console& console, Words) {
  World& world = console.TheWorld();
  const std::vector<ReceivedRequest>& requests = world.Pic().Requests();
  static constexpr std::string_view kLast = "EnableGsm=";
  const auto isLast = [](const ReceivedRequest& request) {
    return std::string_view(reinterpret_cast<const char*>(request.message.data()), request.message.size())
               .find(kLast) == 1;
  };
  const size_t before = console.RequestsAtStart();
  const auto askedAll = [&] {
    return std::any_of(requests.begin() + static_cast<std::ptrdiff_t>(before), requests.end(), isLast);
  };
  if (!world.WaitUntil(askedAll, kPatience)) return "the tool does not ask what it asks at its start";
  world.Wait(std::chrono::milliseconds(100));  // for the answer
  return {};
}

// As most stories begin: the tool, without a delay of its own, at rest after its start.
Problem RunBegin(Console& console, Words) {
  static constexpr std::string_view kDelay = "StartupDelay";
  if (console.ToolRuns()) return "the tool runs already";
  const std::vector<Setting> settings = console.TheWorld().Settings();
  if (std::ranges::find(settings, kDelay, &Setting::name) == settings.end())
    console.TheWorld().SetNumber(Root::kUser, kDelay, 0);
  RunStart(console, {});
  if (Problem problem = RunSettle(console, {})) return problem;
  console.TheWorld().Wait(std::chrono::seconds(12));
  return RunMark(console, {});
}

Problem RunTap(Console& console, Words words) {
  const auto* name = std::ranges::find(kButtonNames, Argument(words, 1), &ButtonName::command);
  const auto held = words.size() == 3 ? ParseTime(words[2]) : std::chrono::milliseconds(100);
  if (name == std::end(kButtonNames) || !held || words.size() > 3) return ExpectedArguments("BUTTON [TIME]");
  World& world = console.TheWorld();
  world.Pic().Press(name->button);
  world.WaitUntil([] { return false; }, *held);
  world.Pic().Release(name->button);
  return {};
}

bool HasButton(const DialogLook& box, int id) {
  return std::ranges::find(box.controls, id, &ControlLook::id) != box.controls.end();
}

Problem AwaitEnd(World& world) {
  if (world.WaitUntil([&world] { return world.ExitCode().has_value(); }, kPatience)) return {};
  return "the tool did not end";
}

Problem RunClose(Console& console, Words) {
  World& world = console.TheWorld();
  if (!world.Post(kCloseMessage, 0, 0)) return "the tool has no window";
  world.WaitUntil([&world] { return world.ExitCode().has_value() || !world.Dialogs().empty(); }, kPatience);
  return {};
}

Problem RunQuit(Console& console, Words words) {
  constexpr int64_t kExitCommand = 128;
  constexpr int kYes = 6;
  constexpr int kNo = 7;
  const bool refuse = Argument(words, 1) == "no";
  if (words.size() > 2 || (words.size() == 2 && !refuse)) return ExpectedArguments("[no]");
  World& world = console.TheWorld();
  if (!world.Post(kCommandMessage, kExitCommand, 0)) return "the tool has no window";
  const auto asks = [&world] {
    const std::optional<DialogLook> front = world.FrontDialog();
    return front && front->isBox && HasButton(*front, kYes);
  };
  if (!world.WaitUntil(asks, kPatience)) return "the tool did not ask";
  world.Press(refuse ? kNo : kYes);
  return refuse ? Problem() : AwaitEnd(world);
}

Problem RunAnswer(Console& console, Words words) {
  struct Row {
    std::string_view word;
    int button;
  };
  constexpr Row kButtons[] = {{"ok", 1}, {"yes", 6}, {"no", 7}};
  const auto* row = std::ranges::find(kButtons, Argument(words, 1), &Row::word);
  if (row == std::end(kButtons) || words.size() != 2) return ExpectedArguments("ok|yes|no");
  return Eventually(console, [&]() -> Problem {
    const std::optional<DialogLook> front = console.TheWorld().FrontDialog();
    if (!front || !front->isBox) return "no message box is open";
    if (!HasButton(*front, row->button)) return "the box has no such button";
    console.TheWorld().Press(row->button);
    return {};
  });
}

// ---- settings
// -----------------------------------------------------------------------------------------------

Problem SetRegistry(Console& console, Root root, Words words) {
  const std::optional<int64_t> value = words.size() == 3 ? ParseNumber(words[2]) : std::nullopt;
  const bool isText = words.size() == 4 && words[2] == "text";
  if (!value && !isText) return ExpectedArguments("NAME NUMBER|text TEXT");
  if (Problem unknown = CheckName(console, words[0], words[1])) return unknown;
  if (value)
    console.TheWorld().SetNumber(root, words[1], *value);
  else
    console.TheWorld().SetText(root, words[1], words[3]);
  return {};
}

Problem RunSet(Console& console, Words words) {
  return SetRegistry(console, Root::kUser, words);
}
Problem RunMachine(Console& console, Words words) {
  return SetRegistry(console, Root::kMachine, words);
}

Problem RunRegistry(Console& console, Words words) {
  if (words.size() > 2) return ExpectedArguments("[NAME]");
  if (Problem unknown = words.size() == 2 ? CheckName(console, words[0], words[1]) : Problem())
    return unknown;
  for (const Setting& setting : console.TheWorld().Settings())
    if (words.size() == 1 || setting.name == words[1])
      console.Out() << "           " << setting.name << " = "
                    << (setting.number ? std::to_string(*setting.number) : "no number") << "\n";
  return {};
}

// The tool reads its profile at the start.
Problem RunAction(Console& console, Words words) {
  constexpr std::string_view kButtonOrder[] = {"fn1-short", "fn2-short", "fn1-long", "fn2-long"};
  constexpr int64_t kTextTypes[] = {0, 2, 3, 9};  // macro, sound, program, cell
  const auto* button = std::ranges::find(kButtonOrder, Argument(words, 1));
  const std::optional<int64_t> type = words.size() >= 4 ? ParseNumber(words[2]) : std::nullopt;
  if (button == std::end(kButtonOrder) || !type)
    return ExpectedArguments("fn1-short|fn2-short|fn1-long|fn2-long TYPE NUMBER|TEXT");
  const std::string parameter = JoinWords(words.subspan(3));
  const bool isText = std::ranges::find(kTextTypes, *type) != std::end(kTextTypes);
  const std::optional<int64_t> value = isText ? -1 : ParseNumber(parameter);
  if (!value) return "an action of type " + words[2] + " has a number, those of 0, 2, 3 and 9 a text";
  const std::string number = std::to_string(*value);
  const std::string text = isText ? parameter : std::string();
  const std::string path = std::string(kDataFolder) + "curprofile.bpf";
  std::string profile = console.TheWorld().ReadFile(path).value_or("");
  profile.append("[Button").append(std::to_string(button - kButtonOrder + 1)).append("]\r\nBtCmd=");
  profile.append(std::to_string(*type)).append("\r\nBtCmdVal=").append(number);
  profile.append("\r\nBtCmdText=").append(text).append("\r\n");
  console.TheWorld().WriteFile(path, profile);
  return {};
}

// ---- what Windows and other programs tell the tool
// ----------------------------------------------------------

// Puts an answer on the timeline, so that expectations see it.
Problem Answered(Console& console, std::optional<int64_t> answer) {
  if (!answer)
    return console.TheWorld().HasMainWindow() ? "the tool did not answer within 30 seconds"
                                              : "the tool has no window";
  console.TheTimeline().Add({console.TheWorld().Now(), "result", "result " + std::to_string(*answer)});
  return {};
}

Problem Delivered(Console& console, std::optional<int64_t> answer) {
  if (answer) return {};
  return Answered(console, answer);
}

Problem RunApp(Console& console, Words words) {
  constexpr std::string_view kActions[] = {"open", "close", "hang", "wake"};
  const std::string_view action = Argument(words, 1);
  if (words.size() != 3 || std::ranges::find(kActions, action) == std::end(kActions))
    return ExpectedArguments("open|close|hang|wake NAME");
  if (action == "open") {
    console.TheWorld().OpenApplication(words[2]);
    if (std::ranges::find(kApplications, words[2]) != std::end(kApplications)) return {};
    console.Out() << "  the tool does not look for it; it looks for:";
    for (const std::string_view name : kApplications) console.Out() << " \"" << name << "\"";
    console.Out() << "\n";
    return {};
  }
  if (action != "close") return console.TheWorld().HangApplication(words[2], action == "hang");
  return console.TheWorld().CloseApplication(words[2]) ? Problem() : "that application is not open";
}

Problem RunOtherCopy(Console& console, Words) {
  console.TheWorld().PlayOtherCopy();
  return {};
}

Problem RunSuspend(Console& console, Words) {
  return Delivered(console, console.TheWorld().Ask(kPowerBroadcast, kSuspend, 0));
}
Problem RunResume(Console& console, Words) {
  return Delivered(console, console.TheWorld().Ask(kPowerBroadcast, kResumeAutomatic, 0));
}
Problem RunEndSession(Console& console, Words words) {
  if (words.size() == 1) return Delivered(console, console.TheWorld().Ask(kEndSession, 1, 0));
  if (words.size() != 2 || words[1] != "ask") return ExpectedArguments("[ask]");
  return Answered(console, console.TheWorld().Ask(kQueryEndSession, 0, 0));
}

Problem RunPort(Console& console, Words words) {
  World& world = console.TheWorld();
  const std::string_view action = Argument(words, 1);
  if (words.size() == 2 && (action == "vanish" || action == "return"))
    return world.LosePort(action == "vanish");
  if (words.size() < 2 || words.size() > 3 || (action != "remove" && action != "arrive"))
    return ExpectedArguments("remove|arrive [NAME], or vanish|return");
  const bool arrived = action == "arrive";
  return Delivered(console,
                   words.size() == 3 ? world.AnnouncePort(arrived, words[2]) : world.PlugPort(arrived));
}

Problem RunSendData(Console& console, Words words) {
  const bool named = words.size() >= 4 && words[words.size() - 2] == "from";
  const size_t rest = named ? words.size() - 2 : words.size();
  const std::optional<int64_t> tag = words.size() > 1 ? ParseNumber(words[1]) : std::nullopt;
  if (!tag || *tag < 0 || rest > 3) return ExpectedArguments("TAG [TEXT] [from NAME]");
  const std::string sender = named ? words.back() : std::string();
  if (named && !console.TheWorld().IsApplicationOpen(sender)) return "no application of that name is open";
  return Answered(console, console.TheWorld().SendData(sender, static_cast<uint64_t>(*tag),
                                                       rest == 3 ? words[2] : std::string()));
}

Problem RunRequest(Console& console, Words words) {
  const std::optional<int64_t> operation = ParseNumber(Argument(words, 1));
  const std::optional<int64_t> value = words.size() > 2 ? ParseNumber(words[2]) : 0;
  if (!operation || !value || words.size() > 3) return ExpectedArguments("OPERATION [VALUE]");
  return Answered(console, console.TheWorld().Ask(kDeviceToolRequest, *operation, *value));
}

Problem RunLed(Console& console, Words words) {
  const std::optional<int64_t> value = words.size() == 2 ? ParseNumber(words[1]) : std::nullopt;
  if (!value) return ExpectedArguments("NUMBER");
  return Delivered(console, console.TheWorld().Ask(kStatusLedRequest, *value, 0));
}

Problem RunAskFirmware(Console& console, Words) {
  return Answered(console, console.TheWorld().Ask(kQueryFirmware, 0, 0));
}

// Puts the lines of the report that comes back on the timeline.
Problem RunAskReport(Console& console, Words words) {
  const std::optional<int64_t> selection = words.size() > 1 ? ParseNumber(words[1]) : 0;
  if (!selection || words.size() > 2) return ExpectedArguments("[SELECTION]");
  std::optional<std::string> report = console.TheWorld().AskReport(*selection);
  if (!report) return Answered(console, std::nullopt);
  std::erase(*report, '\r');
  std::istringstream lines(*report);
  for (std::string line; std::getline(lines, line);)
    console.TheTimeline().Add({console.TheWorld().Now(), "report", line});
  return {};
}

// ---- what is printed
// ----------------------------------------------------------------------------------------

Problem RunShow(Console& console, Words words) {
  if (words.size() != 2 || words[1] != "log") return ExpectedArguments("log");
  const auto log = console.TheWorld().ReadFile(std::string(kDataFolder) + "DevLog.txt");
  if (!log) return "there is no log yet";
  console.Out() << *log;
  return {};
}

Problem RunBytes(Console& console, Words words) {
  const std::optional<bool> on = words.size() == 2 ? ParseOnOff(words[1]) : std::nullopt;
  if (!on) return ExpectedArguments("on|off");
  console.TheTimeline().ShowBytes(*on);
  return {};
}

Problem RunTimeline(Console& console, Words words) {
  const std::string_view word = Argument(words, 1);
  if (words.size() != 2 || (word != "all" && word != "brief")) return ExpectedArguments("all|brief");
  console.TheTimeline().ShowAll(word == "all");
  return {};
}

// In lines that a terminal holds.
void PrintPieces(std::ostream& out, const std::vector<std::string_view>& pieces) {
  constexpr size_t kWidth = 100;
  size_t column = 0;
  for (const std::string_view piece : pieces) {
    const bool fits = column > 0 && column + 1 + piece.size() <= kWidth;
    if (column > 0) out << (fits ? " " : "\n");
    out << piece;
    column = (fits ? column + 1 : 0) + piece.size();
  }
  out << "\n";
}

Problem RunSay(Console& console, Words words) {
  std::vector<std::string> pieces;
  SplitWords(JoinWords(words.subspan(1)), pieces);
  console.Out() << "\n";
  PrintPieces(console.Out(), {pieces.begin(), pieces.end()});
  console.Out() << "\n";
  return {};
}

Problem RunHelp(Console& console, Words);

constexpr ConsoleCommand kCommands[] = {
    {"start", "[ARGUMENTS]", "start the tool (-s: without a dialog)", true, RunStart},
    {"settle", "", "let the tool do everything that it does at its start", false, RunSettle},
    {"begin", "", "start the tool without a dialog and let it come to rest; then mark", true, RunBegin},
    {"wait", "TIME", "let time pass: 3s, 20ms", false, RunWait},
    {"tap", "BUTTON [TIME]", "press a button and release it after 100ms, or after TIME", true, RunTap},
    {"close", "", "close the tool's window", true, RunClose},
    {"quit", "[no]", "close the tool from its menu and answer its question with yes, or no", true, RunQuit},
    {"answer", "ok|yes|no", "answer the message box that is open", true, RunAnswer},
    {"set", "NAME NUMBER|text TEXT", "a user setting in the registry, for the next start", true, RunSet},
    {"machine", "NAME NUMBER|text TEXT", "a machine setting in the registry, for the next start", true,
     RunMachine},
    {"registry", "[NAME]", "print the user settings in the registry", false, RunRegistry},
    {"app", "open|close|hang|wake NAME",
     "one of the maker's applications, by its window's class; hang: it looks at no messages; wake: it does "
     "again",
     true, RunApp},
    {"action", "BUTTON TYPE NUMBER|TEXT",
     "what fn1-short, fn2-short, fn1-long or fn2-long does after the next start; type 0 (macro), 2 (sound), "
     "3 (program) and 9 (cell) have a text",
     true, RunAction},
    {"other-copy", "", "another copy of the tool runs already", true, RunOtherCopy},
    {"port", "remove|arrive [NAME]|...",
     "the controller's port goes or comes back; vanish, return: without a word from Windows", true, RunPort},
    {"suspend", "", "Windows announces standby", true, RunSuspend},
    {"resume", "", "Windows is back from standby", true, RunResume},
    {"end-session", "[ask]", "Windows ends the session, or asks whether it may", true, RunEndSession},
    {"send-data", "TAG [TEXT] [from NAME]", "copied data from an application", true, RunSendData},
    {"firmware-file", "NAME ROW...|all", "make a HEX file of new rows on the tablet's disk", false,
     RunFirmwareFile},
    {"update", "FILE", "an application asks for a firmware update; FILE may also be one on this computer",
     true, RunUpdate},
    {"request", "OPERATION [VALUE]", "a device tool request from an application", true, RunRequest},
    {"led", "NUMBER", "a status LED request from an application", true, RunLed},
    {"ask-firmware", "", "an application asks whether the firmware is new enough", true, RunAskFirmware},
    {"ask-report", "[SELECTION]", "an application asks for the device report: 0 all, 1 the battery", true,
     RunAskReport},
    {"expect", "[no] [exactly] TEXT|next LINE|tap TEXT|nothing",
     "a line that holds TEXT, or is TEXT, must have come; or LINE as the next one; or TEXT down and up; or "
     "nothing more",
     false, RunExpect},
    {"at", "TIME expect TEXT", "the same, and at that time; +TIME counts from the last command", false,
     RunAt},
    {"check", "[no] WHAT ...",
     "registry NAME NUMBER, log TEXT, file NAME TEXT, box|dialog [TEXT], control NAME STATE, exit CODE, "
     "line, "
     "flash",
     false, RunCheck},
    {"worlds", "NAME...", "where the story is played from here on: tablet, windows", false, RunWorlds},
    {"mark", "", "expectations look only at what comes from here on", false, RunMark},
    {"show", "log", "print the tool's log file", false, RunShow},
    {"bytes", "on|off", "show the bytes of every frame", false, RunBytes},
    {"timeline", "all|brief", "show every effect, or what a person would notice", false, RunTimeline},
    {"say", "TEXT", "print TEXT", false, RunSay},
    {"help", "[COMMAND]", "list the commands, or explain one", false, RunHelp},
    {"exit", "", "leave", false, RunExit},
};

struct HelpRow {
  std::string_view name;
  std::string_view arguments;
  std::string_view help;
};

void PrintRow(std::ostream& out, const HelpRow& row) {
  std::string usage = std::string(row.name) + " " + std::string(row.arguments);
  constexpr size_t kColumn = 42;
  usage.resize(std::max(kColumn, usage.size() + 1), ' ');
  out << "  " << usage << row.help << "\n";
}

// "PERCENT|present on|off": the words in small letters are typed as they stand.
void AddPlainWords(std::string_view arguments, std::vector<std::string_view>& words) {
  constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz-";
  constexpr std::string_view kBetween = " |[].";
  while (!arguments.empty()) {
    const std::string_view word = arguments.substr(0, arguments.find_first_of(kBetween));
    if (!word.empty() && word.find_first_not_of(kLetters) == word.npos) words.push_back(word);
    arguments.remove_prefix(std::min(word.size() + 1, arguments.size()));
  }
}

struct HelpGroup {
  std::string_view title;
  std::vector<HelpRow> rows;
};

template <class Row>
std::vector<HelpRow> HelpOf(std::span<const Row> table) {
  std::vector<HelpRow> rows;
  for (const Row& row : table) rows.push_back({row.name, row.arguments, row.help});
  return rows;
}

std::vector<HelpGroup> AllHelp(Console& console) {
  std::vector<HelpGroup> groups = {
      {"The controller", HelpOf(ControllerCommands())},
      {"The tool and what is around it", HelpOf(std::span<const ConsoleCommand>(kCommands))},
      {"The person at dialogs and tray icons", HelpOf(DialogCommands())},
      {"This world alone", HelpOf(console.TheWorld().Commands())}};
  groups.back().rows.push_back({"only", "WORLD COMMAND", "the command in that world, nothing elsewhere"});
  return groups;
}

Problem RunHelp(Console& console, Words words) {
  if (words.size() > 2) return ExpectedArguments("[COMMAND]");
  const std::string_view wanted = Argument(words, 1);
  if (Problem unknown = wanted.empty() ? Problem() : CheckName(console, "help", wanted)) return unknown;
  for (const HelpGroup& group : AllHelp(console)) {
    if (wanted.empty()) console.Out() << group.title << ":\n";
    for (const HelpRow& row : group.rows)
      if (wanted.empty() || row.name == wanted) PrintRow(console.Out(), row);
  }
  const std::vector<std::string_view> names = NamesFor(console, wanted);
  if (!names.empty() && wanted != "help") PrintPieces(console.Out(), names);
  return {};
}

}  // namespace

std::vector<std::string_view> NamesFor(Console& console, std::string_view command) {
  struct Row {
    std::string_view command;
    std::span<const std::string_view> names;
  };
  const Row kRows[] = {{"set", kUserSettings}, {"registry", kUserSettings}, {"machine", kMachineSettings},
                       {"fail", kFunctions},   {"worlds", kWorldNames},     {"only", kWorldNames},
                       {"check", CheckNames()}};
  for (const Row& row : kRows)
    if (row.command == command) return {row.names.begin(), row.names.end()};
  std::vector<std::string_view> names;
  if (command == "tap")
    for (const ButtonName& button : kButtonNames) names.push_back(button.command);
  if (command == "fault")
    for (const FaultName& fault : kFaultNames) names.push_back(fault.command);
  if (command == "help")
    for (const HelpGroup& group : AllHelp(console))
      for (const HelpRow& row : group.rows) names.push_back(row.name);
  return names;
}

Problem CheckName(Console& console, std::string_view command, std::string_view name) {
  const std::vector<std::string_view> names = NamesFor(console, command);
  if (names.empty() || std::ranges::find(names, name) != names.end()) return {};
  if (command == "help") return "no such command: " + std::string(name);
  return "no such name: " + std::string(name) + ", \"help " + std::string(command) + "\" lists them";
}

std::vector<std::string_view> Completions(Console& console, std::string_view line) {
  const size_t blank = line.find_last_of(" \t");
  const std::string_view begun = blank == line.npos ? line : line.substr(blank + 1);
  std::vector<std::string> words;
  SplitWords(line.substr(0, line.size() - begun.size()), words);
  std::vector<std::string_view> names = NamesFor(console, words.empty() ? "help" : words[0]);
  if (words.size() > 1) names.clear();
  for (const HelpGroup& group : AllHelp(console))
    for (const HelpRow& row : group.rows)
      if (!words.empty() && row.name == words[0]) AddPlainWords(row.arguments, names);
  std::erase_if(names, [&](std::string_view name) { return !name.starts_with(begun); });
  return names;
}

const ConsoleCommand* FindConsoleCommand(std::string_view name) {
  for (const std::span<const ConsoleCommand> table :
       {std::span<const ConsoleCommand>(kCommands), DialogCommands()})
    if (const auto row = std::ranges::find(table, name, &ConsoleCommand::name); row != table.end())
      return &*row;
  return nullptr;
}

}  // namespace simulator
