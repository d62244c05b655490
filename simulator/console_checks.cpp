#include <algorithm>

#include "simulator/console.h"
#include "simulator/controller_commands.h"

namespace simulator {
namespace {

Problem CheckRegistry(Console& console, Words arguments, bool wanted) {
  const std::optional<int64_t> value = arguments.size() == 2 ? ParseNumber(arguments[1]) : std::nullopt;
  if (!value) return ExpectedArguments("registry NAME NUMBER");
  if (Problem unknown = CheckName(console, "registry", arguments[0])) return unknown;
  std::optional<int32_t> stored;
  for (const Setting& setting : console.TheWorld().Settings())
    if (setting.name == arguments[0]) stored = setting.number;
  if ((stored == static_cast<int32_t>(*value)) == wanted) return {};
  return "it is " + (stored ? std::to_string(*stored) : "absent");
}

Problem CheckFile(Console& console, Words arguments, bool wanted) {
  if (arguments.empty()) return ExpectedArguments("file NAME [TEXT]");
  const auto content = console.TheWorld().ReadFile(std::string(kDataFolder) + arguments[0]);
  const std::string text = JoinWords(arguments.subspan(1));
  const bool found = content && content->find(text) != content->npos;
  if (found == wanted) return {};
  return content ? "it holds:\n" + *content : "there is no such file";
}

Problem CheckLog(Console& console, Words arguments, bool wanted) {
  std::vector<std::string> file = {"DevLog.txt"};
  file.insert(file.end(), arguments.begin(), arguments.end());
  return CheckFile(console, file, wanted);
}

Problem CheckBox(Console& console, Words arguments, bool wanted) {
  return CheckShown(console, arguments, wanted, true);
}

Problem CheckDialog(Console& console, Words arguments, bool wanted) {
  return CheckShown(console, arguments, wanted, false);
}

Problem CheckExit(Console& console, Words arguments, bool wanted) {
  const std::optional<int64_t> code = arguments.size() == 1 ? ParseNumber(arguments[0]) : std::nullopt;
  if (!code) return ExpectedArguments("exit CODE");
  const std::optional<int> exitCode = console.TheWorld().ExitCode();
  if ((exitCode == static_cast<int>(*code)) == wanted) return {};
  return exitCode ? "it ended with " + std::to_string(*exitCode) : "the tool runs";
}

// The tool kept to the rules of the line: whole frames, one request at a time.
Problem CheckLine(Console& console, Words arguments, bool wanted) {
  if (!arguments.empty()) return ExpectedArguments("line");
  const std::vector<std::string>& violations = console.TheWorld().Pic().Violations();
  if (violations.empty() == wanted) return {};
  return violations.empty() ? "the tool kept to the rules" : violations.front();
}

using Check = Problem (*)(Console& console, Words arguments, bool wanted);
constexpr std::string_view kCheckNames[] = {"registry", "log",  "file", "box",  "dialog",
                                            "control",  "exit", "line", "flash"};
constexpr Check kChecks[] = {CheckRegistry, CheckLog,  CheckFile, CheckBox,  CheckDialog,
                             CheckControl,  CheckExit, CheckLine, CheckFlash};
static_assert(std::size(kChecks) == std::size(kCheckNames));

// Where time is real, so many things happen on their own that only the order counts.
// Quotes do not count.
std::string Pattern(Words words) {
  std::string pattern = JoinWords(words);
  std::erase(pattern, '"');
  return pattern;
}

Problem ExpectNext(Console& console, Words words) {
  const bool isExact = console.TheWorld().Tolerance() == Duration(0);
  const std::string line = Pattern(words);
  if (!isExact && (words.empty() || !console.TheWorld().Sees(line))) return {};
  if (!isExact) return Eventually(console, [&] { return console.TheTimeline().Expect(line, true, {}); });
  return console.TheTimeline().ExpectNext(words.empty() ? std::nullopt : std::optional(line));
}

Problem ExpectIn(Console& console, Words words, std::optional<Duration> at) {
  const bool none = !at && !words.empty() && words[0] == "no";
  if (none) words = words.subspan(1);
  const bool whole = !words.empty() && words[0] == "exactly";
  if (whole) words = words.subspan(1);
  if (words.empty()) return ExpectedArguments("[no] [exactly] TEXT");
  const std::string pattern = Pattern(words);
  if (none) {
    CatchUp(console);
    return console.TheTimeline().ExpectNone(pattern, whole);
  }
  if (!console.TheWorld().Sees(pattern)) return {};
  if (console.TheWorld().Tolerance() > Duration(0)) at.reset();
  return Eventually(console, [&] { return console.TheTimeline().Expect(pattern, whole, at); });
}

Problem ExpectTap(Console& console, Words words) {
  std::vector<std::string> line = {"exactly"};
  line.insert(line.end(), words.begin(), words.end());
  line.emplace_back("down");
  if (Problem problem = ExpectIn(console, line, std::nullopt)) return problem;
  line.back() = "up";
  return ExpectIn(console, line, std::nullopt);
}

}  // namespace

Problem RunExpect(Console& console, Words words) {
  const std::string_view first = words.size() > 1 ? std::string_view(words[1]) : std::string_view();
  if (first == "next" && words.size() > 2) return ExpectNext(console, words.subspan(2));
  if (first == "tap" && words.size() > 2) return ExpectTap(console, words.subspan(2));
  if (first == "nothing" && words.size() == 2) return ExpectNext(console, {});
  return ExpectIn(console, words.subspan(1), std::nullopt);
}

Problem RunAt(Console& console, Words words) {
  std::string_view word = words.size() > 1 ? std::string_view(words[1]) : std::string_view();
  const bool relative = word.starts_with('+');
  if (relative) word.remove_prefix(1);
  const std::optional<Duration> time = ParseTime(word);
  if (!time || words.size() < 4 || words[2] != "expect") return ExpectedArguments("TIME expect TEXT");
  return ExpectIn(console, words.subspan(3), relative ? console.LastActionAt() + *time : *time);
}

void CatchUp(Console& console) {
  constexpr Duration kSettling = std::chrono::milliseconds(200);
  console.TheWorld().Settle();
  if (console.TheWorld().Tolerance() > Duration(0)) console.TheWorld().Wait(kSettling);
}

Problem Eventually(Console& console, const std::function<Problem()>& attempt) {
  World& world = console.TheWorld();
  Problem problem = attempt();
  if (!problem || world.Tolerance() == Duration(0)) return problem;
  world.WaitUntil([&] { return !(problem = attempt()); }, world.Tolerance());
  return problem;
}

std::span<const std::string_view> CheckNames() {
  return kCheckNames;
}

Problem RunCheck(Console& console, Words words) {
  Words rest = words.subspan(1);
  const bool wanted = rest.empty() || rest[0] != "no";
  if (!wanted) rest = rest.subspan(1);
  const auto* name = std::ranges::find(kCheckNames, rest.empty() ? std::string_view() : rest[0]);
  if (name == std::end(kCheckNames))
    return ExpectedArguments("[no] registry|log|file|box|dialog|control|exit|line|flash ...");
  const Check check = kChecks[name - kCheckNames];
  return Eventually(console, [&] { return check(console, rest.subspan(1), wanted); });
}

}  // namespace simulator
