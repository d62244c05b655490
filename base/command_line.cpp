#include "base/command_line.h"

#include <optional>
#include <string_view>

namespace veltra {
namespace {

struct Spelling {
  std::string_view dashes;
  std::string_view name;
  bool CommandLine::*option;
};

constexpr Spelling kSpellings[] = {
    {"-", "?", &CommandLine::help},
    {"--", "help", &CommandLine::help},
    {"-", "silent", &CommandLine::silent},  // or -s, like every beginning that is of one option alone
    {"-", "v5", &CommandLine::openOptions},
};

bool IsWhiteSpace(WideChar c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

void SkipWhiteSpace(WideView& rest) {
  while (!rest.empty() && IsWhiteSpace(rest.front())) rest.remove_prefix(1);
}

size_t QuotedLength(WideView text) {
  for (size_t at = 0; at < text.size(); ++at)
    if (text[at] == '"' && (at + 1 == text.size() || IsWhiteSpace(text[at + 1]))) return at;
  return text.size();
}

std::optional<WideView> TakeArgument(WideView& rest) {
  SkipWhiteSpace(rest);
  if (rest.empty()) return std::nullopt;
  const bool quoted = rest.front() == '"';
  if (quoted) rest.remove_prefix(1);
  size_t length = 0;
  if (quoted)
    length = QuotedLength(rest);
  else
    while (length < rest.size() && !IsWhiteSpace(rest[length])) ++length;
  const WideView argument = rest.substr(0, length);
  rest.remove_prefix(length);
  if (quoted && !rest.empty()) rest.remove_prefix(1);
  return argument;
}

// Letters outside ASCII match no spelling, so they become a character that none contains.
std::string NarrowForMatching(WideView text) {
  std::string narrow;
  for (const WideChar c : text) narrow.push_back(c < 0x80 ? static_cast<char>(c) : '\x7f');
  return narrow;
}

// The option that `argument` spells or abbreviates, null when it is none.
bool CommandLine::*FindOption(std::string argument) {
  if (argument.starts_with('/')) argument.front() = '-';
  const size_t dashCount = std::min(argument.find_first_not_of('-'), argument.size());
  const std::string_view dashes = std::string_view(argument).substr(0, dashCount);
  const std::string_view name = std::string_view(argument).substr(dashCount);
  if (name.empty()) return nullptr;

  bool CommandLine::*abbreviated = nullptr;
  int candidates = 0;
  for (const Spelling& spelling : kSpellings) {
    if (spelling.dashes != dashes) continue;
    if (EqualIgnoringAsciiCase(spelling.name, name)) return spelling.option;
    if (!StartsWithIgnoringAsciiCase(spelling.name, name)) continue;
    abbreviated = spelling.option;
    ++candidates;
  }
  return candidates == 1 ? abbreviated : nullptr;
}

}  // namespace

CommandLine ParseCommandLine(WideView commandLine) {
  CommandLine result;
  TakeArgument(commandLine);  // the program
  while (const std::optional<WideView> argument = TakeArgument(commandLine)) {
    const std::string text = NarrowForMatching(*argument);
    const size_t equals = text.find('=');
    bool CommandLine::*const option = FindOption(text.substr(0, equals));
    if (!option) continue;
    if (equals != std::string::npos) {
      result.refused.emplace_back(*argument);
      continue;
    }
    result.*option = true;
    if (result.help) break;
  }
  return result;
}

}  // namespace veltra
