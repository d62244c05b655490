#include <algorithm>

#include "pal/person.h"
#include "simulator/console.h"
#include "simulator/controller_commands.h"

namespace simulator {
namespace {

Problem CheckRegistry(Console& console, Words arguments, bool wanted) {
  const std::optional<int64_t> value = arguments.size() == 2 ? ParseNumber(arguments[1]) : std::nullopt;
  if (!value) return ExpectedArguments("registry NAME NUMBER");
  const auto stored = console.Tablet().Machine().RegistryDword(HKEY_CURRENT_USER, SimulatedTablet::kUserKey,
                                                               Utf16(arguments[0]));
  if ((stored == static_cast<uint32_t>(*value)) == wanted) return {};
  return "it is " + (stored ? std::to_string(static_cast<int32_t>(*stored)) : "absent");
}

Problem CheckLog(Console& console, Words arguments, bool wanted) {
  const auto log = console.Tablet().Machine().ReadFile(SimulatedTablet::kLogFile);
  const bool found = log && log->find(JoinWords(arguments)) != log->npos;
  if (found == wanted) return {};
  return log ? "the log is:\n" + *log : "there is no log";
}

Problem CheckBox(Console& console, Words arguments, bool wanted) {
  const std::vector<pal::OpenMessageBox> boxes = console.Tablet().Machine().OpenMessageBoxes();
  const std::string text = JoinWords(arguments);
  const bool found = std::ranges::any_of(boxes, [&text](const pal::OpenMessageBox& box) {
    return Ascii(box.text).find(text) != std::string::npos ||
           Ascii(box.caption).find(text) != std::string::npos;
  });
  if (found == wanted) return {};
  std::string open = boxes.empty() ? "no message box is open" : "open:";
  for (const pal::OpenMessageBox& box : boxes) open += " \"" + Ascii(box.text) + "\"";
  return open;
}

Problem CheckDialog(Console&, Words arguments, bool wanted) {
  const std::string text = JoinWords(arguments);
  const std::optional<pal::DialogView> dialog = pal::person::FrontDialog();
  const auto shows = [&text](const pal::ControlView& control) {
    return Ascii(control.text).find(text) != std::string::npos;
  };
  if ((dialog && std::ranges::any_of(dialog->controls, shows)) == wanted) return {};
  if (!dialog) return "no dialog is shown";
  std::string shown = "it shows:";
  for (const pal::ControlView& control : dialog->controls) shown += " \"" + Ascii(control.text) + "\"";
  return shown;
}

Problem CheckExit(Console& console, Words arguments, bool wanted) {
  const std::optional<int64_t> code = arguments.size() == 1 ? ParseNumber(arguments[0]) : std::nullopt;
  if (!code) return ExpectedArguments("exit CODE");
  const std::optional<int> exitCode = console.Tablet().Machine().ExitCode();
  if ((exitCode == static_cast<int>(*code)) == wanted) return {};
  return exitCode ? "it ended with " + std::to_string(*exitCode) : "the tool runs";
}

// The tool kept to the rules of the line: whole frames, one request at a time.
Problem CheckLine(Console& console, Words, bool wanted) {
  const std::vector<std::string>& violations = console.Tablet().Pic().Violations();
  if (violations.empty() == wanted) return {};
  return violations.empty() ? "the tool kept to the rules" : violations.front();
}

struct CheckRow {
  std::string_view name;
  Problem (*run)(Console& console, Words arguments, bool wanted);
};
constexpr CheckRow kChecks[] = {
    {"registry", CheckRegistry}, {"log", CheckLog},     {"box", CheckBox},       {"exit", CheckExit},
    {"line", CheckLine},         {"flash", CheckFlash}, {"dialog", CheckDialog},
};

Problem ExpectIn(Console& console, Words words, std::optional<Duration> at) {
  const bool none = !at && !words.empty() && words[0] == "no";
  if (none) words = words.subspan(1);
  const bool whole = !words.empty() && words[0] == "exactly";
  if (whole) words = words.subspan(1);
  if (words.empty()) return ExpectedArguments("[no] [exactly] TEXT");
  const std::string pattern = JoinWords(words);
  return none ? console.TheTimeline().ExpectNone(pattern, whole)
              : console.TheTimeline().Expect(pattern, whole, at);
}

}  // namespace

Problem RunExpect(Console& console, Words words) {
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

Problem RunCheck(Console& console, Words words) {
  Words rest = words.subspan(1);
  const bool wanted = rest.empty() || rest[0] != "no";
  if (!wanted) rest = rest.subspan(1);
  const auto* row = rest.empty() ? std::end(kChecks)
                                 : std::ranges::find(kChecks, std::string_view(rest[0]), &CheckRow::name);
  if (row == std::end(kChecks)) return ExpectedArguments("[no] registry|log|box|dialog|exit|line|flash ...");
  return row->run(console, rest.subspan(1), wanted);
}

}  // namespace simulator
