#include "pal/resources/version_block.h"

#include <algorithm>
#include <cstring>

#include "pal/text/unicode.h"

namespace pal {
namespace {

constexpr size_t kHeaderSize = 6;  // lengths of node and value, kind of the value

size_t AlignTo4(size_t size) {
  return (size + 3) & ~size_t{3};
}

uint16_t WordAt(const uint8_t* at) {
  uint16_t word = 0;
  std::memcpy(&word, at, sizeof(word));
  return word;
}

// Nodes begin at multiples of 4 of the block, so that offsets in a node can be aligned like those in the
// block.
struct Node {
  const uint8_t* begin;

  [[nodiscard]] size_t Length() const { return WordAt(begin); }
  [[nodiscard]] uint16_t ValueLength() const { return WordAt(begin + 2); }
  [[nodiscard]] bool HasText() const { return WordAt(begin + 4) != 0; }
  [[nodiscard]] std::u16string Name() const {
    std::u16string name;
    for (size_t at = kHeaderSize; at + 1 < Length() && WordAt(begin + at) != 0; at += 2)
      name.push_back(WordAt(begin + at));
    return name;
  }
  [[nodiscard]] size_t ValueOffset() const {
    return AlignTo4(kHeaderSize + (Name().size() + 1) * sizeof(char16_t));
  }
  [[nodiscard]] size_t ValueEnd() const {
    return ValueOffset() + ValueLength() * (HasText() ? sizeof(char16_t) : 1);
  }
};

std::optional<Node> FindChild(const Node& node, std::u16string_view name) {
  size_t at = AlignTo4(node.ValueEnd());
  while (at + kHeaderSize <= node.Length()) {
    const Node child = {node.begin + at};
    if (child.Length() < kHeaderSize || child.Length() > node.Length() - at) return std::nullopt;
    if (EqualFolded(child.Name(), name)) return child;
    at += AlignTo4(child.Length());
  }
  return std::nullopt;
}

}  // namespace

bool IsVersionBlock(std::span<const uint8_t> block) {
  return block.size() >= kHeaderSize && Node{block.data()}.Length() <= block.size();
}

std::optional<VersionValue> FindVersionValue(const uint8_t* block, std::u16string_view path) {
  std::optional<Node> node = Node{block};
  while (node && !path.empty()) {
    const std::u16string_view name = path.substr(0, path.find(u'\\'));
    path.remove_prefix(std::min(path.size(), name.size() + 1));
    if (!name.empty()) node = FindChild(*node, name);
  }
  if (!node || node->ValueEnd() > node->Length()) return std::nullopt;
  return VersionValue{node->begin + node->ValueOffset(), node->ValueLength()};
}

}  // namespace pal
