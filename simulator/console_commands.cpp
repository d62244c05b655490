#include <algorithm>
#include <ostream>

#include "pal/unicode.h"
#include "simulator/board.h"
#include "simulator/console.h"
#include "simulator/controller_commands.h"
#include "simulator/joystick.h"

namespace simulator {
namespace {

constexpr pal::Time kPatience = std::chrono::seconds(30);

std::string_view Argument(Words words, size_t index) {
  return index < words.size() ? std::string_view(words[index]) : std::string_view();
}

// ---- the tool and the person
// --------------------------------------------------------------------------------

Problem RunStart(Console& console, Words words) {
  console.Tablet().Start(Utf16(words.size() > 1 ? JoinWords(words.subspan(1)) : "-s"));
  return {};
}

Problem RunWait(Console& console, Words words) {
  const auto time = words.size() == 2 ? ParseTime(words[1]) : std::nullopt;
  if (!time) return ExpectedArguments("TIME");
  console.Tablet().Advance(*time);
  return {};
}

Problem RunTap(Console& console, Words words) {
  const auto* name = std::ranges::find(kButtonNames, Argument(words, 1), &ButtonName::command);
  const auto held = words.size() == 3 ? ParseTime(words[2]) : std::chrono::milliseconds(100);
  if (name == std::end(kButtonNames) || !held || words.size() > 3) return ExpectedArguments("BUTTON [TIME]");
  console.Tablet().Press(name->button);
  console.Tablet().Advance(*held);
  console.Tablet().Release(name->button);
  return {};
}

Problem RunClose(Console& console, Words) {
  pal::Machine& machine = console.Tablet().Machine();
  if (!machine.Post(console.Tablet().MainWindow(), WM_CLOSE, 0, 0)) return "the tool has no window";
  machine.AdvanceUntil([&machine] { return machine.ExitCode().has_value(); }, kPatience);
  return {};
}

Problem RunQuit(Console& console, Words words) {
  const bool refuse = Argument(words, 1) == "no";
  if (words.size() > 2 || (words.size() == 2 && !refuse)) return ExpectedArguments("[no]");
  if (!console.Tablet().MainWindow()) return "the tool has no window";
  return console.Tablet().Quit(!refuse) ? Problem() : "the tool did not ask, or did not end";
}

Problem RunExit(Console& console, Words) {
  console.End();
  return {};
}

Problem RunAnswer(Console& console, Words words) {
  struct Row {
    std::string_view word;
    int button;
  };
  constexpr Row kButtons[] = {{"ok", IDOK}, {"yes", IDYES}, {"no", IDNO}};
  const auto* row = std::ranges::find(kButtons, Argument(words, 1), &Row::word);
  if (row == std::end(kButtons) || words.size() != 2) return ExpectedArguments("ok|yes|no");
  if (console.Tablet().Machine().OpenMessageBoxes().empty()) return "no message box is open";
  console.Tablet().Machine().AnswerMessageBox(row->button);
  return {};
}

// ---- settings
// -----------------------------------------------------------------------------------------------

Problem SetRegistry(Console& console, HKEY root, Words words) {
  const std::optional<int64_t> value = words.size() == 3 ? ParseNumber(words[2]) : std::nullopt;
  if (!value) return ExpectedArguments("NAME NUMBER");
  console.Tablet().Machine().SetRegistryDword(root, SimulatedTablet::kUserKey, Utf16(words[1]),
                                              static_cast<uint32_t>(*value));
  return {};
}

Problem RunSet(Console& console, Words words) {
  return SetRegistry(console, HKEY_CURRENT_USER, words);
}
Problem RunMachine(Console& console, Words words) {
  return SetRegistry(console, HKEY_LOCAL_MACHINE, words);
}

Problem RunRegistry(Console& console, Words words) {
  if (words.size() > 2) return ExpectedArguments("[NAME]");
  pal::Machine& machine = console.Tablet().Machine();
  for (const std::u16string& name :
       machine.RegistryValueNames(HKEY_CURRENT_USER, SimulatedTablet::kUserKey)) {
    if (words.size() == 2 && Ascii(name) != words[1]) continue;
    const auto value = machine.RegistryDword(HKEY_CURRENT_USER, SimulatedTablet::kUserKey, name);
    console.Out() << "           " << Ascii(name) << " = "
                  << (value ? std::to_string(static_cast<int32_t>(*value)) : "no number") << "\n";
  }
  return {};
}

// ---- what stands around the tool
// ----------------------------------------------------------------------------

Problem RunApp(Console& console, Words words) {
  const std::string_view action = Argument(words, 1);
  if (words.size() != 3 || (action != "open" && action != "close"))
    return ExpectedArguments("open|close NAME");
  if (action == "open") {
    console.Tablet().TheDesk().Open(words[2]);
    return {};
  }
  return console.Tablet().TheDesk().Close(words[2]) ? Problem() : "that application is not open";
}

Problem RunFail(Console& console, Words words) {
  const std::optional<int64_t> times = words.size() == 3 ? ParseNumber(words[2]) : std::nullopt;
  if (!times || *times < 1 || *times > 1'000'000) return ExpectedArguments("FUNCTION TIMES");
  console.Tablet().Machine().Fail(words[1], static_cast<int>(*times), ERROR_ACCESS_DENIED);
  return {};
}

Problem RunJoystick(Console& console, Words words) {
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
    console.Tablet().TheDesk().Remove(Library::kJoystick);
    return {};
  }
  const auto* row = std::ranges::find(kStates, word, &Row::word);
  if (row == std::end(kStates) || words.size() != 2)
    return ExpectedArguments("absent|free|disabled|mismatch|busy|taken");
  TheJoystick() = row->state;
  return {};
}

Problem RunMouseFilter(Console& console, Words words) {
  const std::string_view word = Argument(words, 1);
  if (words.size() != 2 || (word != "absent" && word != "plain")) return ExpectedArguments("absent|plain");
  if (word == "absent")
    console.Tablet().TheDesk().Remove(Library::kMouseFilter);
  else
    console.Tablet().TheDesk().InstallPlainMouseFilter();
  return {};
}

Problem RunBoard(Console& console, Words words) {
  const std::string_view word = Argument(words, 1);
  if (words.size() == 2 && word == "absent") {
    console.Tablet().TheDesk().Remove(Library::kBoard);
    return {};
  }
  const std::optional<int64_t> error = words.size() == 3 ? ParseNumber(words[2]) : std::nullopt;
  struct Row {
    std::string_view word;
    int32_t Board::*error;
  };
  constexpr Row kErrors[] = {{"start-error", &Board::initializeError},
                             {"stop-error", &Board::uninitializeError},
                             {"info-error", &Board::boardInfoError}};
  const auto* row = std::ranges::find(kErrors, word, &Row::word);
  if (!error || row == std::end(kErrors))
    return ExpectedArguments("absent|start-error CODE|stop-error CODE|info-error CODE");
  TheBoard().*(row->error) = static_cast<int32_t>(*error);
  return {};
}

Problem RunMacroPlugin(Console& console, Words words) {
  struct Row {
    std::string_view language;
    Library library;
  };
  constexpr Row kPlugins[] = {{"english", Library::kEnglishMacros}, {"dutch", Library::kDutchMacros}};
  const auto* row = std::ranges::find(kPlugins, Argument(words, 1), &Row::language);
  if (row == std::end(kPlugins) || words.size() != 3 || words[2] != "absent")
    return ExpectedArguments("english|dutch absent");
  console.Tablet().TheDesk().Remove(row->library);
  return {};
}

// The tool reads its profile at the start.
Problem RunAction(Console& console, Words words) {
  constexpr std::string_view kButtonOrder[] = {"fn1-short", "fn2-short", "fn1-long", "fn2-long"};
  const auto* button = std::ranges::find(kButtonOrder, Argument(words, 1));
  const std::optional<int64_t> type = words.size() >= 4 ? ParseNumber(words[2]) : std::nullopt;
  if (button == std::end(kButtonOrder) || !type)
    return ExpectedArguments("fn1-short|fn2-short|fn1-long|fn2-long TYPE NUMBER|TEXT");
  const std::string parameter = JoinWords(words.subspan(3));
  const std::string number = std::to_string(ParseNumber(parameter).value_or(-1));
  const std::string text = ParseNumber(parameter) ? std::string() : parameter;
  pal::Machine& machine = console.Tablet().Machine();
  std::string profile = machine.ReadFile(SimulatedTablet::kProfileFile).value_or("");
  profile.append("[Button").append(std::to_string(button - kButtonOrder + 1)).append("]\r\nBtCmd=");
  profile.append(std::to_string(*type)).append("\r\nBtCmdVal=").append(number);
  profile.append("\r\nBtCmdText=").append(text).append("\r\n");
  machine.WriteFile(SimulatedTablet::kProfileFile, profile);
  return {};
}

Problem RunOtherCopy(Console& console, Words) {
  console.Tablet().Machine().AddForeignMutex(SimulatedTablet::kMainWindowClass);
  console.Tablet().TheDesk().Open(Ascii(SimulatedTablet::kMainWindowClass));
  return {};
}

// ---- what Windows and other programs tell the tool
// ----------------------------------------------------------

// Puts an answer on the timeline, so that expectations see it.
Problem Answered(Console& console, std::optional<LRESULT> answer) {
  if (!answer)
    return console.Tablet().MainWindow() ? "the tool did not answer within 30 seconds"
                                         : "the tool has no window";
  console.TheTimeline().Add(
      {console.Tablet().Machine().Now(), "result", "result " + std::to_string(*answer)});
  return {};
}

Problem Delivered(Console& console, std::optional<LRESULT> answer) {
  if (answer) return {};
  return Answered(console, answer);
}

Problem RunSuspend(Console& console, Words) {
  return Delivered(console, console.Tablet().SendPowerEvent(PBT_APMSUSPEND));
}
Problem RunResume(Console& console, Words) {
  return Delivered(console, console.Tablet().SendPowerEvent(PBT_APMRESUMEAUTOMATIC));
}
Problem RunEndSession(Console& console, Words words) {
  if (words.size() == 1) return Delivered(console, console.Tablet().Ask(WM_ENDSESSION, TRUE));
  if (words.size() != 2 || words[1] != "ask") return ExpectedArguments("[ask]");
  return Answered(console, console.Tablet().Ask(WM_QUERYENDSESSION));
}

Problem RunPort(Console& console, Words words) {
  constexpr std::string_view kArguments = "remove|arrive [NAME], or vanish|return";
  SimulatedTablet& tablet = console.Tablet();
  const std::string_view action = Argument(words, 1);
  if (words.size() == 2 && action == "vanish") {
    tablet.VanishPort();
    return {};
  }
  if (words.size() == 2 && action == "return") {
    tablet.ReturnPort();
    return {};
  }
  if (words.size() > 3 || (action != "remove" && action != "arrive")) return ExpectedArguments(kArguments);
  const bool arrived = action == "arrive";
  if (words.size() == 3) return Delivered(console, tablet.NotifyPort(arrived, Utf16(words[2])));
  if (arrived)
    tablet.ReturnPort();
  else
    tablet.VanishPort();
  const std::string name = "COM" + std::to_string(SimulatedTablet::kControllerPort);
  return Delivered(console, tablet.NotifyPort(arrived, Utf16(name)));
}

Problem RunSendData(Console& console, Words words) {
  const bool named = words.size() >= 4 && words[words.size() - 2] == "from";
  const size_t rest = named ? words.size() - 2 : words.size();
  const std::optional<int64_t> tag = words.size() > 1 ? ParseNumber(words[1]) : std::nullopt;
  if (!tag || *tag < 0 || rest > 3) return ExpectedArguments("TAG [TEXT] [from NAME]");
  const HWND sender = named ? console.Tablet().TheDesk().Find(words.back()) : nullptr;
  if (named && !sender) return "no application of that name is open";
  const std::string payload = rest == 3 ? words[2] : std::string();
  return Answered(
      console, console.Tablet().SendData(sender, static_cast<uint64_t>(*tag),
                                         {reinterpret_cast<const uint8_t*>(payload.data()), payload.size()}));
}

Problem RunRequest(Console& console, Words words) {
  const std::optional<int64_t> operation = ParseNumber(Argument(words, 1));
  const std::optional<int64_t> value = words.size() > 2 ? ParseNumber(words[2]) : 0;
  if (!operation || !value || words.size() > 3) return ExpectedArguments("OPERATION [VALUE]");
  return Answered(console,
                  console.Tablet().Ask(SimulatedTablet::kDeviceToolRequest, static_cast<WPARAM>(*operation),
                                       static_cast<LPARAM>(*value)));
}

Problem RunLed(Console& console, Words words) {
  const std::optional<int64_t> value = words.size() == 2 ? ParseNumber(words[1]) : std::nullopt;
  if (!value) return ExpectedArguments("NUMBER");
  return Delivered(console,
                   console.Tablet().Ask(SimulatedTablet::kStatusLedRequest, static_cast<WPARAM>(*value)));
}

Problem RunAskFirmware(Console& console, Words) {
  return Answered(console, console.Tablet().Ask(SimulatedTablet::kQueryFirmware));
}

// Prints the report that comes back.
Problem RunAskReport(Console& console, Words words) {
  const std::optional<int64_t> selection = words.size() > 1 ? ParseNumber(words[1]) : 0;
  if (!selection || words.size() > 2) return ExpectedArguments("[SELECTION]");
  pal::Machine& machine = console.Tablet().Machine();
  std::u16string report;
  const HWND asker =
      machine.AddForeignWindow(u"Asker", [&report](const pal::ForeignMessage& message) -> LRESULT {
        report.assign(reinterpret_cast<const char16_t*>(message.payload.data()), message.payload.size() / 2);
        return TRUE;
      });
  const auto answer = console.Tablet().Ask(SimulatedTablet::kDeviceReportRequest,
                                           static_cast<WPARAM>(*selection), reinterpret_cast<LPARAM>(asker));
  machine.RemoveForeignWindow(asker);
  std::string text = pal::ToUtf8(report.substr(0, report.find(u'\0')));
  std::erase(text, '\r');
  console.Out() << text;
  return Delivered(console, answer);
}

// ---- what is printed
// ----------------------------------------------------------------------------------------

Problem RunShow(Console& console, Words words) {
  if (words.size() != 2 || words[1] != "log") return ExpectedArguments("log");
  const auto log = console.Tablet().Machine().ReadFile(SimulatedTablet::kLogFile);
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

Problem RunSay(Console& console, Words words) {
  constexpr size_t kWidth = 100;
  std::vector<std::string> pieces;
  SplitWords(JoinWords(words.subspan(1)), pieces);
  size_t column = 0;
  console.Out() << "\n";
  for (const std::string& piece : pieces) {
    const bool fits = column > 0 && column + 1 + piece.size() <= kWidth;
    if (column > 0) console.Out() << (fits ? " " : "\n");
    console.Out() << piece;
    column = (fits ? column + 1 : 0) + piece.size();
  }
  console.Out() << "\n\n";
  return {};
}

Problem RunMark(Console& console, Words) {
  console.TheTimeline().SkipToNow();
  return {};
}

Problem RunHelp(Console& console, Words);

constexpr ConsoleCommand kCommands[] = {
    {"start", "[ARGUMENTS]", "start the tool (-s: without a dialog)", true, RunStart},
    {"wait", "TIME", "let time pass: 3s, 20ms", false, RunWait},
    {"tap", "BUTTON [TIME]", "press a button and release it after 100ms, or after TIME", true, RunTap},
    {"close", "", "close the tool's window", true, RunClose},
    {"quit", "[no]", "close the tool from its menu and answer its question with yes, or no", true, RunQuit},
    {"answer", "ok|yes|no", "answer the message box that is open", true, RunAnswer},
    {"set", "NAME NUMBER", "a user setting in the registry, for the next start", true, RunSet},
    {"machine", "NAME NUMBER", "a machine setting in the registry, for the next start", true, RunMachine},
    {"registry", "[NAME]", "print the user settings in the registry", false, RunRegistry},
    {"app", "open|close NAME", "one of the maker's applications, by its window's class", true, RunApp},
    {"fail", "FUNCTION TIMES", "Windows refuses the next calls of that function, as ExitWindowsEx", true,
     RunFail},
    {"joystick", "absent|free|disabled|...", "the virtual joystick; also mismatch, busy, taken", true,
     RunJoystick},
    {"mouse-filter", "absent|plain", "the mouse filter's library: none, or its 64-bit form", true,
     RunMouseFilter},
    {"board", "absent|start-error CODE|...", "the board's library; also stop-error CODE, info-error CODE",
     true, RunBoard},
    {"macro-plugin", "english|dutch absent", "the macro plug-in of that language is missing", true,
     RunMacroPlugin},
    {"action", "BUTTON TYPE NUMBER|TEXT",
     "what fn1-short, fn2-short, fn1-long or fn2-long does after the next start", true, RunAction},
    {"other-copy", "", "another copy of the tool runs already", true, RunOtherCopy},
    {"port", "remove|arrive [NAME]|...",
     "the controller's port goes or comes; vanish, return: without a word", true, RunPort},
    {"suspend", "", "Windows announces standby", true, RunSuspend},
    {"resume", "", "Windows is back from standby", true, RunResume},
    {"end-session", "[ask]", "Windows ends the session, or asks whether it may", true, RunEndSession},
    {"send-data", "TAG [TEXT] [from NAME]", "copied data from an application", true, RunSendData},
    {"firmware-file", "NAME ROW...|all", "a HEX file of new rows, on the tablet's disk", false,
     RunFirmwareFile},
    {"update", "FILE", "an application asks for a firmware update; also with a file of this computer", true,
     RunUpdate},
    {"request", "OPERATION [VALUE]", "a device tool request from an application", true, RunRequest},
    {"led", "NUMBER", "a status LED request from an application", true, RunLed},
    {"ask-firmware", "", "an application asks whether the firmware is new enough", true, RunAskFirmware},
    {"ask-report", "[SELECTION]", "an application asks for the device report: 0 all, 1 the battery", true,
     RunAskReport},
    {"expect", "[no] [exactly] TEXT", "a line that holds TEXT, or is TEXT, must have come", false, RunExpect},
    {"at", "TIME expect TEXT", "and at that time; +TIME counts from the last command", false, RunAt},
    {"check", "WHAT ...", "registry NAME NUMBER, [no] log TEXT, [no] box|dialog TEXT, exit CODE, line, flash",
     false, RunCheck},
    {"mark", "", "expectations look from here on", false, RunMark},
    {"show", "log", "print the tool's log file", false, RunShow},
    {"bytes", "on|off", "show the bytes of every frame", false, RunBytes},
    {"timeline", "all|brief", "show every effect, or what a person would notice", false, RunTimeline},
    {"say", "TEXT", "print TEXT", false, RunSay},
    {"help", "", "this list", false, RunHelp},
    {"exit", "", "leave", false, RunExit},
};

void PrintRow(std::ostream& out, std::string_view name, std::string_view arguments, std::string_view help) {
  std::string usage = std::string(name) + " " + std::string(arguments);
  constexpr size_t kColumn = 42;
  usage.resize(std::max(kColumn, usage.size() + 1), ' ');
  out << "  " << usage << help << "\n";
}

Problem RunHelp(Console& console, Words) {
  console.Out() << "The controller:\n";
  for (const ControllerCommand& row : ControllerCommands())
    PrintRow(console.Out(), row.name, row.arguments, row.help);
  console.Out() << "The tablet around it:\n";
  for (const ConsoleCommand& row : kCommands) PrintRow(console.Out(), row.name, row.arguments, row.help);
  return {};
}

}  // namespace

const ConsoleCommand* FindConsoleCommand(std::string_view name) {
  const auto* row = std::ranges::find(kCommands, name, &ConsoleCommand::name);
  return row == std::end(kCommands) ? nullptr : row;
}

}  // namespace simulator
