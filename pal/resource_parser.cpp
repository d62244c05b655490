#include "pal/resource_parser.h"

#include <algorithm>

#include "pal/unicode.h"

namespace pal {
namespace {

constexpr int kDeepestBrackets = 64;

struct Operation {
  std::string_view sign;
  int strength;  // the higher binds closer
};
constexpr Operation kOperations[] = {{"|", 1}, {"^", 2}, {"&", 3}, {"+", 4},
                                     {"-", 4}, {"*", 5}, {"/", 5}, {"%", 5}};

uint32_t Calculate(std::string_view sign, uint32_t a, uint32_t b) {
  switch (sign.front()) {
    case '|':
      return a | b;
    case '^':
      return a ^ b;
    case '&':
      return a & b;
    case '+':
      return a + b;
    case '-':
      return a - b;
    case '*':
      return a * b;
    case '/':
      return a / b;
    default:
      return a % b;
  }
}

}  // namespace

Token TokenReader::Take() {
  return AtEnd() ? tokens_[at_] : tokens_[at_++];
}

bool TokenReader::TakeIf(std::string_view word) {
  if (!Peek().Is(word)) return false;
  Take();
  return true;
}

void TokenReader::Expect(std::string_view word) {
  if (!TakeIf(word)) Fail(std::string(word) + " is missing here");
}

void TokenReader::ExpectBegin() {
  if (!TakeIf("BEGIN") && !TakeIf("{")) Fail("BEGIN is missing here");
}

bool TokenReader::TakeIfEnd() {
  if (TakeIf("END") || TakeIf("}")) return true;
  if (AtEnd()) Fail("END is missing");
  return false;
}

uint32_t TokenReader::TakeNumber() {
  return TakeOperation(1, 0);
}

uint32_t TokenReader::TakeOperation(int weakest, int depth) {
  uint32_t value = TakeOperand(depth);
  for (;;) {
    const auto operation =
        std::ranges::find_if(kOperations, [this](const Operation& row) { return Peek().Is(row.sign); });
    if (operation == std::end(kOperations) || operation->strength < weakest) return value;
    Take();
    const uint32_t second = TakeOperation(operation->strength + 1, depth);
    const bool divides = operation->sign == "/" || operation->sign == "%";
    if (divides && second == 0) Fail("division by zero");
    value = Calculate(operation->sign, value, second);
  }
}

uint32_t TokenReader::TakeOperand(int depth) {
  if (depth == kDeepestBrackets) Fail("brackets too deep");
  if (TakeIf("-")) return 0U - TakeOperand(depth + 1);
  if (TakeIf("~")) return ~TakeOperand(depth + 1);
  if (TakeIf("(")) {
    const uint32_t value = TakeOperation(1, depth + 1);
    Expect(")");
    return value;
  }
  if (Peek().kind == Token::Kind::kName) Fail("unknown name " + Peek().word);
  if (Peek().kind != Token::Kind::kNumber) Fail("a number is missing here");
  return Take().number;
}

uint16_t TokenReader::TakeWord() {
  const uint32_t value = TakeNumber();
  const auto number = static_cast<int32_t>(value);
  if (number < -0x8000 || number > 0xFFFF) Fail("the number has more than 16 bits");
  return static_cast<uint16_t>(value);
}

uint16_t TokenReader::TakeNextWord() {
  Expect(",");
  return TakeWord();
}

std::u16string TokenReader::TakeText() {
  if (Peek().kind != Token::Kind::kText) Fail("a text is missing here");
  std::u16string text;
  while (Peek().kind == Token::Kind::kText) text += Take().text;
  return text;
}

ResourceName TokenReader::TakeName() {
  if (Peek().kind == Token::Kind::kText) return {FoldCase(Take().text), 0};
  if (Peek().kind == Token::Kind::kName) return {FoldCase(DecodeUtf8(Take().word).text), 0};
  return {{}, TakeWord()};
}

uint32_t TokenReader::TakeStyle(uint32_t style) {
  do {
    if (TakeIf("NOT"))
      style &= ~TakeOperand(0);
    else
      style |= TakeOperation(2, 0);
  } while (TakeIf("|"));
  return style;
}

uint16_t TokenReader::TakeLanguage() {
  const uint16_t primary = TakeWord();
  const uint16_t sub = TakeNextWord();
  if (primary > 0x3FF || sub > 0x3F) Fail("no such language");
  return static_cast<uint16_t>(sub << 10 | primary);
}

void ByteWriter::Word(size_t value) {
  Byte(static_cast<uint8_t>(value));
  Byte(static_cast<uint8_t>(value >> 8));
}

void ByteWriter::Dword(uint32_t value) {
  Word(value);
  Word(value >> 16);
}

void ByteWriter::Units(std::u16string_view text) {
  for (const char16_t unit : text) Word(unit);
}

void ByteWriter::Text(std::u16string_view text) {
  Units(text);
  Word(0);
}

void ByteWriter::Name(const ResourceName& name) {
  if (name.number == 0) return Text(name.text);
  Word(0xFFFF);
  Word(name.number);
}

void ByteWriter::AlignTo4() {
  while (bytes_.size() % 4 != 0) Byte(0);
}

void ByteWriter::OrWord(size_t at, size_t bits) {
  bytes_[at] = static_cast<uint8_t>(bytes_[at] | bits);
  bytes_[at + 1] = static_cast<uint8_t>(bytes_[at + 1] | bits >> 8);
}

}  // namespace pal
