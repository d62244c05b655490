// One line of a resource script: names, numbers, texts, signs.
#include <algorithm>
#include <cctype>

#include "pal/resource_tokens.h"
#include "pal/unicode.h"

namespace pal {
namespace {

bool IsDigit(char c, int base) {
  if (c >= '0' && c <= '9') return c - '0' < base;
  const char lower = static_cast<char>(c | 0x20);
  return base == 16 && lower >= 'a' && lower <= 'f';
}

uint32_t DigitValue(char c) {
  return static_cast<uint32_t>(c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
}

bool BeginsName(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}
bool ContinuesName(char c) {
  return BeginsName(c) || IsDigit(c, 10);
}

class LineSplitter {
 public:
  LineSplitter(std::string_view line, const ScriptPlace& place) : rest_(line), place_(place) {}

  std::vector<Token> Split() {
    std::vector<Token> tokens;
    while (SkipBlanks()) tokens.push_back(Next());
    return tokens;
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const { throw ScriptError(place_, what); }

  bool SkipBlanks() {
    while (!rest_.empty() && (rest_.front() == ' ' || rest_.front() == '\t')) rest_.remove_prefix(1);
    return !rest_.empty();
  }

  Token Next() {
    Token token;
    token.place = place_;
    if (rest_.starts_with("L\"")) {
      rest_.remove_prefix(1);
      ReadText(token);
      if (std::ranges::any_of(token.text, [](char16_t unit) { return unit > 0x7F; }))
        Fail("a wide text may hold ASCII only: write it without the L");
    } else if (rest_.front() == '"') {
      ReadText(token);
    } else if (IsDigit(rest_.front(), 10)) {
      ReadNumber(token);
    } else if (BeginsName(rest_.front())) {
      token.kind = Token::Kind::kName;
      token.word = TakeWhile(ContinuesName);
    } else if (std::string_view("{}(),|&^~+-*/%#<>").find(rest_.front()) != std::string_view::npos) {
      token.kind = Token::Kind::kSign;
      token.word = rest_.substr(0, 1);
      rest_.remove_prefix(1);
    } else {
      Fail("this sign stands for nothing here: " + std::string(rest_.substr(0, 1)));
    }
    return token;
  }

  template <class Predicate>
  std::string TakeWhile(Predicate predicate) {
    const auto end = std::ranges::find_if_not(rest_, predicate);
    const std::string taken(rest_.begin(), end);
    rest_.remove_prefix(taken.size());
    return taken;
  }

  void ReadNumber(Token& token) {
    token.kind = Token::Kind::kNumber;
    const bool hex = rest_.starts_with("0x") || rest_.starts_with("0X");
    const int base = hex ? 16 : rest_.front() == '0' ? 8 : 10;
    if (hex) rest_.remove_prefix(2);
    const std::string digits = TakeWhile([base](char c) { return IsDigit(c, base); });
    uint64_t number = 0;
    for (const char digit : digits) {
      number = number * static_cast<uint64_t>(base) + DigitValue(digit);
      if (number > UINT32_MAX) Fail("the number has more than 32 bits");
    }
    if (!rest_.empty() && (rest_.front() == 'L' || rest_.front() == 'l')) rest_.remove_prefix(1);
    if (digits.empty() || (!rest_.empty() && ContinuesName(rest_.front()))) Fail("not a number");
    token.number = static_cast<uint32_t>(number);
  }

  void ReadText(Token& token) {
    token.kind = Token::Kind::kText;
    rest_.remove_prefix(1);
    std::string bytes;
    for (;;) {
      if (rest_.empty()) Fail("the text does not end on its line");
      const char c = rest_.front();
      rest_.remove_prefix(1);
      if (c == '\\') {
        bytes.push_back(ReadEscape());
      } else if (c != '"') {
        bytes.push_back(c);
      } else if (rest_.starts_with('"')) {  // a quotation mark, written twice
        bytes.push_back(c);
        rest_.remove_prefix(1);
      } else {
        break;
      }
    }
    DecodedText decoded = DecodeUtf8(bytes);
    if (!decoded.valid) Fail("the text is not UTF-8");
    token.text = std::move(decoded.text);
  }

  char ReadEscape() {
    struct Row {
      char letter;
      char meaning;
    };
    constexpr Row kRows[] = {{'n', '\n'}, {'r', '\r'}, {'t', '\t'}, {'\\', '\\'}, {'"', '"'}};
    if (rest_.empty()) Fail("the text does not end on its line");
    const char letter = rest_.front();
    if (IsDigit(letter, 8)) return ReadCode(8, 3);
    rest_.remove_prefix(1);
    if (letter == 'x') return ReadCode(16, 2);
    for (const Row& row : kRows)
      if (row.letter == letter) return row.meaning;
    Fail(std::string("unknown escape: \\") + letter);
  }

  char ReadCode(int base, size_t mostDigits) {
    uint32_t code = 0;
    size_t digits = 0;
    while (digits < mostDigits && !rest_.empty() && IsDigit(rest_.front(), base)) {
      code = code * static_cast<uint32_t>(base) + DigitValue(rest_.front());
      rest_.remove_prefix(1);
      ++digits;
    }
    if (digits == 0 || code > 0xFF) Fail("not the code of a byte");
    return static_cast<char>(code);
  }

  std::string_view rest_;
  const ScriptPlace& place_;
};

}  // namespace

std::vector<Token> SplitLine(std::string_view line, const ScriptPlace& place) {
  return LineSplitter(line, place).Split();
}

}  // namespace pal
