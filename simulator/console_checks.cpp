#include <algorithm>

#include "simulator/console.h"
#include "simulator/controller_commands.h"

namespace simulator {
namespace {

Problem CheckRegistry(Console& console, Words arguments, bool wanted) {
  const std::optional<int64_t> value = arguments.size() == 2 ? ParseNumber(arguments[1]) : std::nullopt;
  if (!value) return ExpectedArguments("registry NAME NUMBER");
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
Problem CheckLine(Console& console, Words, bool wanted) {
  const std::vector<std::string>& violations = console.TheWorld().Pic().Violations();
  if (violations.empty() == wanted) return {};
  return violations.empty() ? "the tool kept to the rules" : violations.front();
}

struct CheckRow {
  std::string_view name;
  Problem (*run)(Console& console, Words arguments, bool wanted);
};
constexpr CheckRow kChecks[] = {
    {"registry", CheckRegistry}, {"log", CheckLog},       {"file", CheckFile},
    {"box", CheckBox},           {"dialog", CheckDialog}, {"control", CheckControl},
    {"exit", CheckExit},         {"line", CheckLine},     {"flash", CheckFlash},
};

// Where time is real, so many things happen on their own that only the order counts.
Problem ExpectNext(Console& console, Words words) {
  const bool isExact = console.TheWorld().Tolerance() == Duration(0);
  const std::string line = JoinWords(words);
  if (!isExact && words.empty()) return {};
  if (!isExact) return Eventually(console, [&] { return console.TheTimeline().Expect(line, true, {}); });
  return console.TheTimeline().ExpectNext(words.empty() ? std::nullopt : std::optional(line));
}

Problem ExpectIn(Console& console, Words words, std::optional<Duration> at) {
  const bool none = !at && !words.empty() && words[0] == "no";
  if (none) words = words.subspan(1);
  const bool whole = !words.empty() && words[0] == "exactly";
  if (whole) words = words.subspan(1);
  if (words.empty()) return ExpectedArguments("[no] [exactly] TEXT");
  const std::string pattern = JoinWords(words);
  if (none) {
    console.TheWorld().Settle();
    return console.TheTimeline().ExpectNone(pattern, whole);
  }
  return Eventually(console, [&] { return console.TheTimeline().Expect(pattern, whole, at); });
}

}  // namespace

Problem RunExpect(Console& console, Words words) {
  const std::string_view first = words.size() > 1 ? std::string_view(words[1]) : std::string_view();
  if (first == "next" && words.size() > 2) return ExpectNext(console, words.subspan(2));
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

Problem Eventually(Console& console, const std::function<Problem()>& attempt) {
  World& world = console.TheWorld();
  Problem problem = attempt();
  if (!problem || world.Tolerance() == Duration(0)) return problem;
  world.WaitUntil([&] { return !(problem = attempt()); }, world.Tolerance());
  return problem;
}

Problem RunCheck(Console& console, Words words) {
  Words rest = words.subspan(1);
  const bool wanted = rest.empty() || rest[0] != "no";
  if (!wanted) rest = rest.subspan(1);
  const auto* row = rest.empty() ? std::end(kChecks)
                                 : std::ranges::find(kChecks, std::string_view(rest[0]), &CheckRow::name);
  if (row == std::end(kChecks))
    return ExpectedArguments("[no] registry|log|file|box|dialog|control|exit|line|flash ...");
  return Eventually(console, [&] { return row->run(console, rest.subspan(1), wanted); });
}

}  // namespace simulator
