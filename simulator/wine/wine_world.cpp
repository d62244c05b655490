#include "simulator/wine/wine_world.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <thread>

#include "simulator/wire.h"

namespace simulator {
namespace {

using Fields = std::vector<std::string>;

const std::string kToolWindow(kMainWindow);

std::filesystem::path Prefix() {
  return std::getenv("WINEPREFIX");
}

std::filesystem::path HostPath(std::string_view windowsPath) {
  std::string path(windowsPath);
  std::ranges::replace(path, '\\', '/');
  constexpr std::string_view kUsers = "C:/Users/";
  if (path.starts_with(kUsers)) return Prefix() / "drive_c/users" / path.substr(kUsers.size());
  return Prefix() / "drive_c" / path.substr(3);
}

Fields Split(const std::string& line) {
  Fields words;
  std::istringstream stream(line + '\t');
  for (std::string word; std::getline(stream, word, '\t');) words.push_back(word);
  return words;
}

// While it runs, the Windows session stays up.
void KeepSession() {
  static std::unique_ptr<WineProcess> keeper;
  if (!keeper || !keeper->IsRunning()) keeper = std::make_unique<WineProcess>("observer.exe");
}

const char* NameOf(Root root) {
  return root == Root::kUser ? "user" : "machine";
}

// The access keys of the menu items of that label, in whatever language: a menu passes over a key that is not
// its own.
std::string AccessKeysOf(std::string_view label) {
  std::string keys;
  for (const char* language : {"english", "dutch"}) {
    std::ifstream menus(std::string(VELTRA_RESOURCES "/menus_").append(language).append(".rc"));
    for (std::string line; std::getline(menus, line);) {
      const size_t mark = line.find('&');
      const char key = mark < line.size() ? line[mark + 1] : '\0';
      if (key && line.erase(mark, 1).find("\"" + std::string(label) + "\"") != line.npos) keys += key;
    }
  }
  return keys;
}

// A message box has texts and the usual buttons, and nothing else.
bool IsOfBox(const ControlLook& control) {
  constexpr int kLastButton = 11;  // IDCONTINUE
  return control.kind == "Static" || (control.kind == "Button" && control.id <= kLastButton);
}

Problem RunCommand(World& world, Words words) {
  const std::optional<int64_t> command = words.size() == 2 ? ParseNumber(words[1]) : std::nullopt;
  if (!command) return "expects: NUMBER";
  return world.Post(kCommandMessage, *command, 0) ? Problem() : "the tool has no window";
}

// A program of Windows beside the tool: Notepad, say.
Problem RunProgram(World& world, Words words) {
  if (words.size() < 2) return "expects: NAME [ARGUMENT...]";
  static_cast<WineWorld&>(world).StartProgram(words[1], {words.begin() + 2, words.end()});
  return {};
}

Problem RunWindow(World& world, Words words) {
  if (words.size() < 2 || words.size() > 3) return "expects: CAPTION [TEXT]";
  const std::string wanted = words.size() == 3 ? words[2] : "";
  auto& desktop = static_cast<WineWorld&>(world);
  const auto shows = [&] {
    const Fields texts = Split(desktop.Run({"texts", words[1]}));
    return texts[0] == "yes" && (wanted.empty() || std::ranges::find(texts, wanted) != texts.end());
  };
  if (world.WaitUntil(shows, kPatience)) return {};
  return "no such window, or it does not show that";
}

// With ImageMagick; what has just happened is given time to be painted.
Problem RunPicture(World& world, Words words) {
  if (words.size() < 2 || words.size() > 3) return "expects: FILE [CAPTION]";
  constexpr Duration kPaintTime = std::chrono::milliseconds(700);
  world.WaitUntil([] { return false; }, kPaintTime);
  std::string command = "import -window root ";
  if (words.size() == 3)
    command += "-crop " + static_cast<WineWorld&>(world).Run({"rect", words[2]}) + " +repage ";
  return std::system((command + "'" + words[1] + "'").c_str()) == 0 ? Problem() : "the picture is not made";
}

// What a simulated device reads from the environment when the tool is started.
struct DeviceFault {
  std::string_view command;
  std::string_view word;
  const char* variable;
};
constexpr DeviceFault kDeviceFaults[] = {
    {"board", "start-error", "VELTRA_BOARD_START_ERROR"},
    {"board", "stop-error", "VELTRA_BOARD_STOP_ERROR"},
    {"board", "codec-errors", "VELTRA_BOARD_CODEC_ERRORS"},
    {"board", "serves-messages", "VELTRA_BOARD_SERVES_MESSAGES"},
    {"playback", "refuses", "VELTRA_PLAYBACK_REFUSES"},
};

Problem RunDeviceFault(World&, Words words) {
  for (const DeviceFault& fault : kDeviceFaults) {
    if (words.size() != 3 || words[0] != fault.command || words[1] != fault.word) continue;
    setenv(fault.variable, words[2].c_str(), 1);
    return {};
  }
  return "no such fault of that device, \"help\" lists them";
}

constexpr char kBoardLibrary[] = "keapi.dll";

void InstallBoardLibrary() {
  std::filesystem::copy_file(std::filesystem::path(std::getenv("VELTRA_DEVICES")) / kBoardLibrary,
                             ProgramPath(kBoardLibrary), std::filesystem::copy_options::overwrite_existing);
}

void LetDevicesWork() {
  for (const DeviceFault& fault : kDeviceFaults) unsetenv(fault.variable);
  InstallBoardLibrary();
}

// Its name in the library ends in another letter, which leaves the names in their order.
Problem RemoveExport(const std::string& name) {
  InstallBoardLibrary();
  std::fstream file(ProgramPath(kBoardLibrary), std::ios::in | std::ios::out | std::ios::binary);
  const std::string content(std::istreambuf_iterator<char>(file), {});
  const size_t at = content.find(name + '\0');
  if (at == content.npos) return "the library has no such export";
  file.seekp(static_cast<std::streamoff>(at + name.size() - 1));
  file.put('_');
  return {};
}

Problem RunBoard(World& world, Words words) {
  const std::string_view word = words.size() > 1 ? std::string_view(words[1]) : std::string_view();
  if (words.size() == 3 && word == "lacks") return RemoveExport(words[2]);
  if (words.size() != 2 || (word != "absent" && word != "damaged")) return RunDeviceFault(world, words);
  std::filesystem::remove(ProgramPath(kBoardLibrary));
  if (word == "damaged") std::ofstream(ProgramPath(kBoardLibrary)) << word;
  return {};
}

Problem RunHoldings(World& world, Words) {
  return static_cast<WineWorld&>(world).TryRun({"holdings", kToolWindow});
}

constexpr WorldCommand kCommands[] = {
    {"board", "absent|damaged|lacks EXPORT|...",
     "the board's library, from the next start on; also start-error, stop-error, codec-errors, "
     "serves-messages NUMBER",
     RunBoard},
    {"playback", "refuses FUNCTION", "the playback device refuses that function, from the next start on",
     RunDeviceFault},
    {"command", "NUMBER", "the command of a menu item, sent to the tool", RunCommand},
    {"program", "NAME [ARGUMENT...]", "starts a program of Windows", RunProgram},
    {"window", "CAPTION [TEXT]", "waits for a window of any program, and for one of its texts", RunWindow},
    {"picture", "FILE [CAPTION]", "a picture of the desktop, or of one window", RunPicture},
    {"holdings", "", "what the tool holds: working set, handles, objects of GDI and of all of USER",
     RunHoldings},
};

}  // namespace

std::span<const WorldCommand> WineWorld::Commands() const {
  return kCommands;
}

WineWorld::WineWorld() : line_(Prefix() / "com2") {
  constexpr int kAttempts = 10;
  std::filesystem::remove_all(HostPath(kDataFolder));
  std::filesystem::remove(ProgramPath("devices.log"));
  LetDevicesWork();
  // The session of the story before may still be ending, and take along what is started meanwhile.
  Problem problem = "no observer";
  for (int n = 0; problem && n < kAttempts; ++n) {
    KeepSession();
    observer_ = std::make_unique<WineProcess>("observer.exe");
    sessionEnded_ = false;
    problem = TryRun({"forget"});
  }
  if (problem) Fail(*problem);
  Run({"watch"});
}

// ---- what happens
// --------------------------------------------------------------------------------------

void WineWorld::OnEntry(std::function<void(TimelineEntry, bool)> listener) {
  listener_ = std::move(listener);
}

void WineWorld::Happened(std::string_view who, std::string text) {
  const bool isNoticed = !text.starts_with("i2c ");
  if (listener_) listener_({Now(), std::string(who), std::move(text)}, isNoticed);
}

void WineWorld::Turn() {
  line_.Serve();
  if (line_.IsOpen() != wasOpen_) {
    wasOpen_ = !wasOpen_;
    Happened("port", wasOpen_ ? "serial COM2 opened" : "serial COM2 closed");
  }
  TakeObserverLines();
  TakeDeviceCalls();
  WatchTool();
}

void WineWorld::TakeObserverLines() {
  while (const std::optional<std::string> line = observer_->TakeLine()) {
    if (line->starts_with("*"))
      Happened("effect", line->substr(2));
    else if (!line->starts_with("ready"))
      answer_ = line;
  }
}

void WineWorld::TakeDeviceCalls() {
  if (!deviceLog_.is_open()) deviceLog_.open(ProgramPath("devices.log"));
  deviceLog_.clear();
  for (std::string part; std::getline(deviceLog_, part);) {
    deviceCall_ += part;
    if (deviceLog_.eof()) break;
    Happened("device", std::exchange(deviceCall_, {}));
  }
}

void WineWorld::WatchTool() {
  if (!hasEnded_ && !tool_->IsRunning()) {
    hasEnded_ = true;
    Happened("program", "program ends with " + std::to_string(tool_->ExitCode()));
  }
  if (sessionEnded_ || observer_->IsRunning()) return;
  sessionEnded_ = true;
  Happened("program", "power off");
}

bool WineWorld::WaitUntil(const std::function<bool()>& condition, Duration limit) {
  const Duration end = Now() + limit;
  for (;;) {
    Turn();
    if (condition()) return true;
    if (Now() > end) return false;
    std::this_thread::sleep_for(kPollPause);
  }
}

// What is expected is waited for anyway.
void WineWorld::Wait(Duration span) {
  constexpr Duration kLongest = std::chrono::milliseconds(100);
  WaitUntil([] { return false; }, std::min(span, kLongest));
}

void WineWorld::Settle() {
  Turn();
  if (!hasEnded_ && !otherCopyHangs_ && HasMainWindow()) Ask(0, 0, 0);
  Turn();
}

Problem WineWorld::TryRun(const Fields& words, std::string* answer) {
  if (sessionEnded_) return "the session has ended";
  std::string line;
  for (const std::string& word : words) line += (line.empty() ? "" : "\t") + word;
  answer_.reset();
  const bool isGiven = observer_->WriteLine(line);
  if (!isGiven || !WaitUntil([this] { return answer_ || sessionEnded_; }, kPatience * 2) || !answer_)
    return words[0] + ": no answer";
  const std::string given = *std::exchange(answer_, std::nullopt);
  if (given.starts_with("!")) return words[0] + ": " + given.substr(2);
  if (answer) *answer = given.substr(2);
  return {};
}

std::string WineWorld::Run(const Fields& words) {
  std::string answer;
  if (const Problem problem = TryRun(words, &answer)) Fail(*problem);
  return answer;
}

// What a program does to Windows itself cannot be seen from beside it.
bool WineWorld::Sees(std::string_view line) const {
  constexpr std::string_view kUnseen[] = {"awake",   "stays awake", "may sleep",   "session ",    "beep",
                                          "sound ",  "run ",        "macro ",      "timer ",      "registry ",
                                          "file ",   "debug ",      "menu ",       "chosen ",     "box ",
                                          "answer ", "dialog ",     "foreground ", "opened file "};
  return std::ranges::none_of(kUnseen, [&](std::string_view word) { return line.starts_with(word); });
}

// ---- the tool
// ------------------------------------------------------------------------------------------

void WineWorld::Start(std::string_view arguments) {
  Fields words;
  SplitWords(arguments, words);
  tool_ = std::make_unique<WineProcess>("veltratool.exe", words);
  hasEnded_ = false;
}

void WineWorld::StartProgram(const std::string& name, const std::vector<std::string>& arguments) {
  others_.push_back(std::make_unique<WineProcess>(name, arguments));
}

std::optional<int> WineWorld::ExitCode() {
  if (!tool_ || tool_->IsRunning()) return std::nullopt;
  return tool_->ExitCode();
}

bool WineWorld::HasMainWindow() {
  return Run({"find", kToolWindow}) == "yes";
}

std::optional<int64_t> WineWorld::AskNumber(const Fields& words) {
  std::string answer;
  if (TryRun(words, &answer)) return std::nullopt;
  return std::stoll(answer);
}

std::optional<int64_t> WineWorld::Ask(uint32_t message, int64_t wParam, int64_t lParam) {
  return AskNumber(
      {"send", kToolWindow, std::to_string(message), std::to_string(wParam), std::to_string(lParam)});
}

bool WineWorld::Post(uint32_t message, int64_t wParam, int64_t lParam) {
  return !TryRun(
      {"post", kToolWindow, std::to_string(message), std::to_string(wParam), std::to_string(lParam)});
}

std::optional<int64_t> WineWorld::SendData(std::string_view sender, uint64_t tag, std::string_view payload) {
  std::string hex = DescribeBytes({reinterpret_cast<const uint8_t*>(payload.data()), payload.size()});
  return AskNumber({"copy", kToolWindow, std::string(sender), std::to_string(tag), hex});
}

std::optional<std::string> WineWorld::AskReport(int64_t selection) {
  Run({"open", "Asker"});
  const auto answer = Ask(kDeviceReportRequest, selection, std::stoll(Run({"handle", "Asker"})));
  std::string report = Run({"received"});
  std::ranges::replace(report, '\x1E', '\n');
  Run({"close", "Asker"});
  if (!answer) return std::nullopt;
  return report;
}

std::optional<int64_t> WineWorld::AnnouncePort(bool arrived, std::string_view name) {
  return AskNumber({"device", kToolWindow, arrived ? "arrived" : "removed", std::string(name)});
}

std::optional<int64_t> WineWorld::PlugPort(bool plugged) {
  if (plugged) line_.Plug();
  const std::optional<int64_t> answer = AnnouncePort(plugged, "COM2");
  if (!plugged) line_.Unplug();
  return answer;
}

// Here a wait for comm events outlives the line: a tool that has the port open cannot know.
Problem WineWorld::LosePort(bool lost) {
  if (line_.IsOpen()) return "here an open port does not go without a word";
  lost ? line_.Unplug() : line_.Plug();
  return {};
}

// ---- registry and disk
// --------------------------------------------------------------------------------------

void WineWorld::SetNumber(Root root, std::string_view name, int64_t value) {
  Run({"set-number", NameOf(root), std::string(name), std::to_string(value)});
}

void WineWorld::SetText(Root root, std::string_view name, std::string_view text) {
  Run({"set-text", NameOf(root), std::string(name), std::string(text)});
}

std::vector<Setting> WineWorld::Settings() {
  std::vector<Setting> settings;
  for (const std::string& word : Split(Run({"list", "user"}))) {
    const size_t equals = word.find('=');
    if (equals == word.npos) continue;
    Setting& setting = settings.emplace_back(Setting{word.substr(0, equals), std::nullopt});
    if (equals + 1 < word.size()) setting.number = std::stoi(word.substr(equals + 1));
  }
  return settings;
}

std::optional<std::string> WineWorld::ReadFile(std::string_view path) {
  std::ifstream file(HostPath(path), std::ios::binary);
  if (!file) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(file), {});
}

void WineWorld::WriteFile(std::string_view path, std::string_view content) {
  std::filesystem::create_directories(HostPath(path).parent_path());
  std::ofstream(HostPath(path), std::ios::binary) << content;
}

// ---- other programs and the person
// -----------------------------------------------------------------------------

void WineWorld::OpenApplication(std::string_view windowClass) {
  Run({"open", std::string(windowClass)});
}
bool WineWorld::CloseApplication(std::string_view windowClass) {
  return Run({"close", std::string(windowClass)}) == "yes";
}
bool WineWorld::IsApplicationOpen(std::string_view windowClass) {
  return Run({"find", std::string(windowClass)}) == "yes";
}
Problem WineWorld::HangApplication(std::string_view windowClass, bool hangs) {
  if (windowClass == kToolWindow) otherCopyHangs_ = hangs;
  return TryRun({hangs ? "hang" : "wake", std::string(windowClass)});
}
void WineWorld::PlayOtherCopy() {
  Run({"hold", kToolWindow});
  Run({"open", kToolWindow});
}

std::vector<DialogLook> WineWorld::Dialogs() {
  std::string answer;
  if (TryRun({"dialogs"}, &answer)) return {};
  const Fields words = Split(answer);
  std::vector<DialogLook> dialogs;
  size_t at = 0;
  const auto next = [&] { return at < words.size() ? words[at++] : std::string(); };
  while (at < words.size()) {
    const std::string what = next();
    if (what == "dialog") dialogs.push_back({.title = next(), .controls = {}});
    if (what != "control") continue;
    ControlLook look{.id = std::stoi(next()), .kind = next(), .text = next()};
    const std::string state = next();
    look.isShown = state.find('s') != state.npos;
    look.isEnabled = state.find('e') != state.npos;
    look.isChecked = state.find('c') != state.npos;
    look.position = std::stoll(next());
    dialogs.back().controls.push_back(std::move(look));
  }
  for (DialogLook& dialog : dialogs) dialog.isBox = std::ranges::all_of(dialog.controls, IsOfBox);
  return dialogs;
}

std::optional<DialogLook> WineWorld::FrontDialog() {
  std::vector<DialogLook> dialogs = Dialogs();
  if (dialogs.empty()) return std::nullopt;
  return std::move(dialogs.front());
}

std::vector<std::string> WineWorld::Entries(int id) {
  return Split(Run({"entries", std::to_string(id)}));
}

void WineWorld::Press(int id) {
  Run({"press", std::to_string(id)});
}
void WineWorld::DoubleClick(int id) {
  Run({"double-click", std::to_string(id)});
}
void WineWorld::Choose(int id, std::string_view entry) {
  Run({"choose", std::to_string(id), std::string(entry)});
}
void WineWorld::Slide(int id, int position) {
  Run({"slide", std::to_string(id), std::to_string(position)});
}
void WineWorld::Type(int id, std::string_view text) {
  Run({"type", std::to_string(id), std::string(text)});
}
Problem WineWorld::PressKey(int virtualKey) {
  return TryRun({"key", std::to_string(virtualKey)});
}
Problem WineWorld::CloseDialog() {
  return TryRun({"close-dialog"});
}

Problem WineWorld::PickFile(std::string_view path) {
  constexpr int kFileName = 1148;
  constexpr int kOk = 1;
  constexpr int kCancel = 2;
  const std::optional<DialogLook> front = FrontDialog();
  if (!front || front->title != "Open") return "no box asks for a file";
  if (!path.empty()) Type(kFileName, path);
  Press(path.empty() ? kCancel : kOk);
  const auto isGone = [&] {
    const std::optional<DialogLook> now = FrontDialog();
    return !now || now->title != front->title;
  };
  // It may still have been on its way when the name was typed.
  return WaitUntil(isGone, std::chrono::seconds(1)) ? Problem() : "the box that asks for a file stays open";
}

Problem WineWorld::UseTrayIcon(TrayIcon icon, MouseAction action) {
  constexpr const char* kActions[] = {"click", "double", "right"};
  return TryRun({"tray", std::to_string(static_cast<int>(icon)), kActions[static_cast<int>(action)]});
}

// A menu that is open takes the keys of its window: the access key of the item, escape without one.
Problem WineWorld::ChooseMenuItem(std::string_view label) {
  const std::string keys = label.empty() ? "\x1B" : AccessKeysOf(label);
  if (keys.empty()) return "no menu has such an item with an access key";
  Problem problem;
  WaitUntil([&] { return !(problem = TryRun({"menu", kToolWindow, keys})); }, std::chrono::seconds(3));
  return problem;
}

}  // namespace simulator
