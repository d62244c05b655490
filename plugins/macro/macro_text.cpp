#include "plugins/macro/macro_text.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "plugins/macro/macro_keys.h"

namespace macro {
namespace {

constexpr uint8_t kEnterKey = 0x0D;
constexpr uint8_t kTabKey = 0x09;
constexpr size_t kMostDigits = 5;

bool IsDigit(veltra::WideChar c) {
  return c >= '0' && c <= '9';
}

bool IsLetter(veltra::WideChar c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool EqualsWord(WideView text, std::string_view word) {
  return veltra::UpperAscii(text) == veltra::UpperAscii(veltra::Widen(word));
}

// A number from 1 to `most`.
std::optional<int> ReadNumber(WideView digits, int most) {
  if (digits.empty() || digits.size() > kMostDigits || !std::ranges::all_of(digits, IsDigit))
    return std::nullopt;
  int number = 0;
  for (const veltra::WideChar digit : digits) number = number * 10 + (digit - '0');
  if (number < 1 || number > most) return std::nullopt;
  return number;
}

// Letters and digits are their own virtual keys.
bool NamesItself(veltra::WideChar c) {
  return IsLetter(c) || IsDigit(c);
}

std::optional<MacroKey> ReadKey(WideView name) {
  if (name.size() == 1 && NamesItself(name[0]))
    return MacroKey{static_cast<uint8_t>(veltra::UpperAscii(static_cast<char>(name[0])))};
  const KeyName* key = FindKey(name);
  if (!key) return std::nullopt;
  return MacroKey{key->virtualKey, key->isExtended};
}

bool IsModifier(WideView name) {
  const KeyName* key = FindKey(name);
  return key && key->isModifier;
}

// Reads a macro from its start; each member takes what it has understood.
class Parser {
 public:
  explicit Parser(WideView text) : text_(text) {}

  ParsedMacro Parse() {
    while (at_ < text_.size() && !macro_.mistake) ParseNext();
    if (macro_.mistake) macro_.steps.clear();
    return std::move(macro_);
  }

 private:
  void ParseNext() {
    const veltra::WideChar c = text_[at_];
    if ((c == '{' || c == '}') && text_.substr(at_ + 1).starts_with(c)) return TypeCharacter(c, 2);
    if (c == '{') return ParseBraces();
    if (c == '}') return Refuse(Mistake::kNotOpened, at_, 1);
    if (c == '\r' && text_.substr(at_ + 1).starts_with('\n')) return PressKey(kEnterKey, 2);
    if (c == '\r' || c == '\n') return PressKey(kEnterKey, 1);
    if (c == '\t') return PressKey(kTabKey, 1);
    TypeCharacter(c, 1);
  }

  void ParseBraces() {
    const size_t begin = at_ + 1;
    const size_t end = text_.find('}', begin);
    if (end == text_.npos) return Refuse(Mistake::kNotClosed, at_, text_.size() - at_);
    const WideView inside = text_.substr(begin, end - begin);
    if (inside.size() == 1 && inside[0] >= ' ' && !NamesItself(inside[0])) return TypeCharacter(inside[0], 3);
    const size_t blank = std::min(text_.find(' ', begin), end);
    const bool hasNumber = blank < end;
    const WideView name = text_.substr(begin, blank - begin);
    const WideView number = hasNumber ? text_.substr(blank + 1, end - blank - 1) : WideView();
    const size_t numberAt = hasNumber ? blank + 1 : begin;
    const size_t numberLength = hasNumber ? number.size() : name.size();
    if (EqualsWord(name, "Pause") || EqualsWord(name, "Pauze")) {
      AddPause(ReadNumber(number, kLongestPauseMs), numberAt, numberLength);
    } else {
      const std::optional<int> count = hasNumber ? ReadNumber(number, kMostRepeats) : 1;
      if (!count) return Refuse(Mistake::kBadNumber, numberAt, numberLength);
      AddChord(name, begin, *count);
    }
    at_ = end + 1;
  }

  void AddPause(std::optional<int> milliseconds, size_t at, size_t length) {
    if (!milliseconds) return Refuse(Mistake::kBadNumber, at, length);
    pausesMs_ += *milliseconds;
    if (pausesMs_ > kLongestPauseMs) return Refuse(Mistake::kTooLong, at, length);
    MacroStep step;
    step.kind = MacroStep::Kind::kPause;
    step.count = *milliseconds;
    macro_.steps.push_back(std::move(step));
  }

  // Names with "+" between them; all but the last are modifiers.
  void AddChord(WideView names, size_t at, int count) {
    MacroStep step;
    step.kind = MacroStep::Kind::kKeys;
    step.count = count;
    for (;;) {
      const size_t length = std::min(names.find('+'), names.size());
      const WideView name = names.substr(0, length);
      const bool isLast = length == names.size();
      const std::optional<MacroKey> key = ReadKey(name);
      if (!key) return Refuse(Mistake::kUnknownKey, at, length);
      if (!isLast && !IsModifier(name)) return Refuse(Mistake::kNotAModifier, at, length);
      step.keys.push_back(*key);
      if (isLast) break;
      names.remove_prefix(length + 1);
      at += length + 1;
    }
    macro_.steps.push_back(std::move(step));
  }

  void PressKey(uint8_t virtualKey, size_t length) {
    MacroStep step;
    step.kind = MacroStep::Kind::kKeys;
    step.keys = {MacroKey{virtualKey}};
    macro_.steps.push_back(std::move(step));
    at_ += length;
  }

  void TypeCharacter(veltra::WideChar c, size_t length) {
    if (macro_.steps.empty() || macro_.steps.back().kind != MacroStep::Kind::kText)
      macro_.steps.emplace_back();
    macro_.steps.back().text.push_back(c);
    at_ += length;
  }

  void Refuse(Mistake mistake, size_t at, size_t length) {
    if (!macro_.mistake) macro_.mistake = MacroMistake{mistake, at, length};
  }

  WideView text_;
  size_t at_ = 0;
  int pausesMs_ = 0;
  ParsedMacro macro_;
};

WideText Spelled(veltra::WideChar c) {
  WideText spelled = veltra::Widen("{");
  spelled.push_back(c);
  spelled.push_back('}');
  return spelled;
}

bool IsQuote(veltra::WideChar c) {
  return c == '"' || c == '\'';
}

}  // namespace

ParsedMacro ParseMacro(WideView text) {
  return Parser(text).Parse();
}

WideText FitForProfile(WideView text) {
  WideText line;
  for (size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '\r' && text.substr(at + 1).starts_with('\n')) continue;
    if (text[at] == '\r' || text[at] == '\n')
      line += veltra::Widen("{Enter}");
    else if (text[at] == '\t')
      line += veltra::Widen("{Tab}");
    else
      line.push_back(text[at]);
  }
  if (line.empty()) return line;
  const bool isQuoted = line.size() > 1 && line.front() == line.back() && IsQuote(line.front());
  if (isQuoted || line.front() == ' ') line.replace(0, 1, Spelled(line.front()));
  if (line.back() == ' ') line.replace(line.size() - 1, 1, Spelled(' '));
  return line;
}

}  // namespace macro
