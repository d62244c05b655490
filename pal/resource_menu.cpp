// Menus: MENU scripts to menu templates of version 0.
#include <algorithm>
#include <optional>

#include "pal/resource_parser.h"

namespace pal {
namespace {

constexpr uint16_t kPopup = 0x0010;
constexpr uint16_t kLastOfItsMenu = 0x0080;
constexpr int kDeepestMenu = 16;

struct Option {
  std::string_view word;
  uint16_t flag;
};
constexpr Option kOptions[] = {{"GRAYED", 0x0001},       {"INACTIVE", 0x0002},  {"CHECKED", 0x0008},
                               {"MENUBARBREAK", 0x0020}, {"MENUBREAK", 0x0040}, {"HELP", 0x4000}};

// The words after an item's text and id.
uint16_t TakeOptions(TokenReader& tokens) {
  uint16_t flags = 0;
  for (;;) {
    const bool comma = tokens.TakeIf(",");
    const auto option =
        std::ranges::find_if(kOptions, [&](const Option& row) { return tokens.Peek().Is(row.word); });
    if (option == std::end(kOptions)) {
      if (comma) tokens.Fail("unknown option of a menu item");
      return flags;
    }
    tokens.Take();
    flags = static_cast<uint16_t>(flags | option->flag);
  }
}

void WriteItems(TokenReader& tokens, ByteWriter& writer, int depth) {
  if (depth == kDeepestMenu) tokens.Fail("menus too deep");
  tokens.ExpectBegin();
  std::optional<size_t> flagsOfLast;
  while (!tokens.TakeIfEnd()) {
    flagsOfLast = writer.Size();
    if (tokens.TakeIf("POPUP")) {
      const std::u16string text = tokens.TakeText();
      writer.Word(kPopup | TakeOptions(tokens));
      writer.Text(text);
      WriteItems(tokens, writer, depth + 1);
      continue;
    }
    tokens.Expect("MENUITEM");
    const bool separator = tokens.TakeIf("SEPARATOR");
    const std::u16string text = separator ? std::u16string() : tokens.TakeText();
    const uint16_t id = separator ? uint16_t{0} : tokens.TakeNextWord();
    writer.Word(separator ? 0 : TakeOptions(tokens));
    writer.Word(id);
    writer.Text(text);
  }
  if (!flagsOfLast) tokens.Fail("a menu without items");
  writer.OrWord(*flagsOfLast, kLastOfItsMenu);
}

}  // namespace

std::vector<uint8_t> CompileMenu(TokenReader& tokens, uint16_t& language) {
  while (tokens.TakeIf("LANGUAGE")) language = tokens.TakeLanguage();
  ByteWriter writer;
  writer.Word(0);  // version
  writer.Word(0);  // bytes between this header and the items
  WriteItems(tokens, writer, 0);
  return writer.Take();
}

}  // namespace pal
