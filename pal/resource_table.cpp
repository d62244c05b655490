#include "pal/resource_table.h"

#include <algorithm>

#include "pal/byte_reader.h"
#include "pal/thread_language.h"
#include "pal/unicode.h"

namespace pal {
namespace {

LANGID NeutralOf(LANGID language) {
  return MAKELANGID(PRIMARYLANGID(language), SUBLANG_NEUTRAL);
}

std::vector<LANGID> Candidates(LANGID language) {
  std::vector<LANGID> candidates = {language, NeutralOf(language), LANG_NEUTRAL};
  if (PRIMARYLANGID(language) != LANG_NEUTRAL) return candidates;
  const LANGID own = CurrentThreadLanguage().userInterface;
  for (const LANGID one : {own, NeutralOf(own), kUserLanguage, NeutralOf(kUserLanguage),
                           static_cast<LANGID>(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US))})
    candidates.push_back(one);
  return candidates;
}

ResourceName ReadName(ByteReader& reader) {
  if (const std::optional<WORD> number = reader.NumberForText()) return {{}, *number};
  return {reader.Text(), 0};
}

// Each resource has a header of its own; the file begins with one of nothing, so that nobody takes it for a
// file of 16-bit Windows.
ResourceKey ReadHeader(ByteReader& reader, DWORD& dataSize) {
  const size_t begin = reader.Position();
  dataSize = reader.Dword();
  const DWORD headerSize = reader.Dword();
  ResourceKey key;
  key.type = ReadName(reader);
  key.name = ReadName(reader);
  reader.AlignTo4();
  reader.Dword();  // version of the data
  reader.Word();   // memory options of 16-bit Windows
  key.language = reader.Word();
  reader.Dword();  // version of the resource
  reader.Dword();  // for whoever wrote it
  if (reader.Position() - begin != headerSize) Die("no resource file, or a damaged one");
  return key;
}

}  // namespace

void ResourceTable::Load(std::span<const uint8_t> file) {
  entries_.clear();
  ByteReader reader(file);
  DWORD size = 0;
  if (ReadHeader(reader, size) != ResourceKey() || size != 0) Die("no resource file, or a damaged one");
  while (!reader.AtEnd()) {
    ResourceKey key = ReadHeader(reader, size);
    const auto data = reader.Bytes(size);
    reader.AlignTo4();
    entries_[std::move(key)].assign(data.begin(), data.end());
  }
}

const ResourceTable::Entry* ResourceTable::Find(const ResourceName& type, const ResourceName& name,
                                                LANGID language) const {
  for (const LANGID candidate : Candidates(language))
    if (const auto found = entries_.find({type, name, candidate}); found != entries_.end()) return &*found;
  return nullptr;
}

const ResourceTable::Entry* ResourceTable::FromHandle(const void* handle) const {
  const auto found = std::ranges::find_if(entries_, [&](const Entry& entry) { return &entry == handle; });
  return found == entries_.end() ? nullptr : &*found;
}

std::span<const uint8_t> ResourceTable::At(const void* data) const {
  const auto found =
      std::ranges::find_if(entries_, [&](const Entry& entry) { return entry.second.data() == data; });
  if (found == entries_.end()) Die("a template that is no resource of the program");
  return found->second;
}

ResourceName ResourceNameOf(LPCWSTR name) {
  if (IS_INTRESOURCE(name)) return {{}, static_cast<uint16_t>(reinterpret_cast<ULONG_PTR>(name))};
  return {FoldCase(name), 0};
}

}  // namespace pal
