#include "pal/resources/resource_table.h"

#include <algorithm>
#include <fstream>

#include "pal/machine/machine_mutex.h"
#include "pal/resources/byte_reader.h"
#include "pal/text/thread_language.h"
#include "pal/text/unicode.h"

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

// The file begins with the header of no resource, so that nobody takes it for one of 16-bit Windows.
constexpr DWORD kEmptyHeader = 32;

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
  if (reader.Position() - begin != headerSize) Die("a resource has another header than its file says");
  return key;
}

}  // namespace

void ResourceTable::Load(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  if (!file) Die("cannot read the resource file " + path.string());
  std::vector<uint8_t> content(static_cast<size_t>(file.tellg()));
  file.seekg(0).read(reinterpret_cast<char*>(content.data()), static_cast<std::streamsize>(content.size()));
  Load(content);
}

void ResourceTable::Load(std::span<const uint8_t> content) {
  const MachineLock lock(mutex_);
  entries_.clear();
  ByteReader reader(content);
  if (reader.Dword() != 0 || reader.Dword() != kEmptyHeader) Die("no resource file");
  reader.Bytes(kEmptyHeader - reader.Position());
  while (!reader.AtEnd()) {
    DWORD size = 0;
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
