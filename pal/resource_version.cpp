// Version information: VERSIONINFO scripts to the block that version queries read.
#include <algorithm>

#include "pal/resource_parser.h"

namespace pal {
namespace {

constexpr uint32_t kSignature = 0xFEEF04BD;
constexpr uint32_t kStructureVersion = 0x00010000;
constexpr int kDeepestBlock = 8;

// Every node of the block begins with its length, the length of its value and the value's kind, then its
// name; a value and children follow, each at a multiple of 4.
class Node {
 public:
  Node(ByteWriter& writer, std::u16string_view name, bool text) : writer_(writer) {
    writer_.AlignTo4();
    begin_ = writer_.Size();
    writer_.Word(0);
    writer_.Word(0);
    writer_.Word(text ? 1 : 0);
    writer_.Text(name);
  }

  // In units for texts, in bytes for anything else.
  void SetValueLength(size_t length) { writer_.OrWord(begin_ + 2, length); }
  void Finish() { writer_.OrWord(begin_, writer_.Size() - begin_); }

 private:
  ByteWriter& writer_;
  size_t begin_;
};

void WriteTextValue(TokenReader& tokens, ByteWriter& writer, std::u16string_view name) {
  std::u16string text = tokens.TakeText();
  while (text.ends_with(u'\0')) text.pop_back();
  Node node(writer, name, true);
  writer.AlignTo4();
  writer.Text(text);
  node.SetValueLength(text.size() + 1);
  node.Finish();
}

void WriteNumbersValue(TokenReader& tokens, ByteWriter& writer, std::u16string_view name) {
  Node node(writer, name, false);
  writer.AlignTo4();
  const size_t begin = writer.Size();
  do writer.Word(tokens.TakeWord());
  while (tokens.TakeIf(","));
  node.SetValueLength(writer.Size() - begin);
  node.Finish();
}

void WriteBlocks(TokenReader& tokens, ByteWriter& writer, int depth) {
  if (depth == kDeepestBlock) tokens.Fail("blocks too deep");
  tokens.ExpectBegin();
  while (!tokens.TakeIfEnd()) {
    if (tokens.TakeIf("BLOCK")) {
      Node node(writer, tokens.TakeText(), true);
      WriteBlocks(tokens, writer, depth + 1);
      node.Finish();
      continue;
    }
    tokens.Expect("VALUE");
    const std::u16string name = tokens.TakeText();
    tokens.Expect(",");
    if (tokens.Peek().kind == Token::Kind::kText)
      WriteTextValue(tokens, writer, name);
    else
      WriteNumbersValue(tokens, writer, name);
  }
}

struct FixedInfo {
  uint16_t fileVersion[4] = {};
  uint16_t productVersion[4] = {};
  uint32_t flagsMask = 0;
  uint32_t flags = 0;
  uint32_t system = 0;
  uint32_t type = 0;
  uint32_t subtype = 0;
};

void TakeVersion(TokenReader& tokens, uint16_t (&version)[4]) {
  std::ranges::fill(version, uint16_t{0});
  for (uint16_t& part : version) {
    part = tokens.TakeWord();
    if (!tokens.TakeIf(",")) return;
  }
  tokens.Fail("a version has four parts");
}

FixedInfo TakeFixedInfo(TokenReader& tokens) {
  struct Row {
    std::string_view word;
    uint32_t FixedInfo::*field;
  };
  constexpr Row kRows[] = {{"FILEFLAGSMASK", &FixedInfo::flagsMask},
                           {"FILEFLAGS", &FixedInfo::flags},
                           {"FILEOS", &FixedInfo::system},
                           {"FILETYPE", &FixedInfo::type},
                           {"FILESUBTYPE", &FixedInfo::subtype}};
  FixedInfo info;
  for (;;) {
    if (tokens.TakeIf("FILEVERSION")) {
      TakeVersion(tokens, info.fileVersion);
    } else if (tokens.TakeIf("PRODUCTVERSION")) {
      TakeVersion(tokens, info.productVersion);
    } else {
      const auto row =
          std::ranges::find_if(kRows, [&](const Row& one) { return tokens.Peek().Is(one.word); });
      if (row == std::end(kRows)) return info;
      tokens.Take();
      info.*row->field = tokens.TakeNumber();
    }
  }
}

void WriteFixedInfo(const FixedInfo& info, ByteWriter& writer) {
  writer.Dword(kSignature);
  writer.Dword(kStructureVersion);
  for (const auto& version : {info.fileVersion, info.productVersion}) {
    writer.Dword(static_cast<uint32_t>(version[0] << 16 | version[1]));
    writer.Dword(static_cast<uint32_t>(version[2] << 16 | version[3]));
  }
  for (const uint32_t number : {info.flagsMask, info.flags, info.system, info.type, info.subtype})
    writer.Dword(number);
  writer.Dword(0);  // no date
  writer.Dword(0);
}

}  // namespace

std::vector<uint8_t> CompileVersion(TokenReader& tokens) {
  const FixedInfo info = TakeFixedInfo(tokens);
  ByteWriter writer;
  Node root(writer, u"VS_VERSION_INFO", false);
  writer.AlignTo4();
  const size_t begin = writer.Size();
  WriteFixedInfo(info, writer);
  root.SetValueLength(writer.Size() - begin);
  WriteBlocks(tokens, writer, 0);
  root.Finish();
  if (writer.Size() > UINT16_MAX) tokens.Fail("the version information is too long");
  return writer.Take();
}

}  // namespace pal
