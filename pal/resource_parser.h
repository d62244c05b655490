// Reading the tokens of a resource script, and writing the binary forms of resources.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "pal/resource_tokens.h"

namespace pal {

class TokenReader {
 public:
  explicit TokenReader(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}

  [[nodiscard]] const Token& Peek() const { return tokens_[at_]; }
  [[nodiscard]] bool AtEnd() const { return Peek().kind == Token::Kind::kEnd; }
  [[noreturn]] void Fail(const std::string& what) const { throw ScriptError(Peek().place, what); }

  Token Take();  // the end is never passed
  // Takes the next token when it is that word or sign.
  bool TakeIf(std::string_view word);
  void Expect(std::string_view word);
  // BEGIN or {, END or }.
  void ExpectBegin();
  bool TakeIfEnd();
  // A sum of numbers and its like: | ^ & + - * / % ~ and brackets, in 32 bits.
  uint32_t TakeNumber();
  // A number that fits in 16 bits, signed or not.
  uint16_t TakeWord();
  // A comma and a number.
  uint16_t TakeNextWord();
  std::u16string TakeText();  // texts that stand side by side are one
  // A number, a name or a text.
  ResourceName TakeName();
  // A style in which NOT takes bits away from what stands before it.
  uint32_t TakeStyle(uint32_t style);
  // LANGUAGE has been taken: its two numbers.
  uint16_t TakeLanguage();

 private:
  uint32_t TakeOperand(int depth);
  uint32_t TakeOperation(int weakest, int depth);

  std::vector<Token> tokens_;
  size_t at_ = 0;
};

class ByteWriter {
 public:
  void Byte(uint8_t value) { bytes_.push_back(value); }
  void Word(size_t value);  // the low 16 bits
  void Dword(uint32_t value);
  void Units(std::u16string_view text);  // without a terminator
  void Text(std::u16string_view text);   // with one
  // A number after 0xFFFF, a text, or nothing as an empty text: how templates name things.
  void Name(const ResourceName& name);
  void Bytes(std::span<const uint8_t> bytes) { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }
  void AlignTo4();
  void OrWord(size_t at, size_t bits);  // adds bits to the word at that place

  [[nodiscard]] size_t Size() const { return bytes_.size(); }
  std::vector<uint8_t> Take() { return std::move(bytes_); }

 private:
  std::vector<uint8_t> bytes_;
};

// The bodies of resources: what stands behind name and type. They may set another language for this resource.
std::vector<uint8_t> CompileMenu(TokenReader& tokens, uint16_t& language);
std::vector<uint8_t> CompileDialog(TokenReader& tokens, bool extended, uint16_t& language);
std::vector<uint8_t> CompileVersion(TokenReader& tokens);

struct IconImage {
  uint16_t id = 0;  // name of its RT_ICON
  std::vector<uint8_t> data;
};
struct CompiledIcon {
  std::vector<uint8_t> group;
  std::vector<IconImage> images;
};
// The pictures of an icon file, numbered from `firstId` on; throws ScriptError when it is none.
CompiledIcon CompileIcon(std::string_view file, uint16_t firstId, const ScriptPlace& place);

}  // namespace pal
