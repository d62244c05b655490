#include "pal/resource_table.h"

#include <algorithm>

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

}  // namespace

void ResourceTable::Load(std::vector<Resource> resources) {
  entries_.clear();
  for (Resource& resource : resources) entries_.emplace(std::move(resource.key), std::move(resource.data));
}

ResourceTable::Found ResourceTable::Find(const ResourceName& type, const ResourceName& name,
                                         LANGID language) const {
  if (entries_.empty()) return {nullptr, ERROR_RESOURCE_DATA_NOT_FOUND};
  for (const LANGID candidate : Candidates(language))
    if (const auto found = entries_.find({type, name, candidate}); found != entries_.end()) return {&*found};
  const auto ofName = std::ranges::find_if(
      entries_, [&](const Entry& entry) { return entry.first.type == type && entry.first.name == name; });
  if (ofName != entries_.end()) {
    if (PRIMARYLANGID(language) == LANG_NEUTRAL) return {&*ofName};
    return {nullptr, ERROR_RESOURCE_LANG_NOT_FOUND};
  }
  const bool knowsType =
      std::ranges::any_of(entries_, [&](const Entry& entry) { return entry.first.type == type; });
  if (knowsType) return {nullptr, ERROR_RESOURCE_NAME_NOT_FOUND};
  return {nullptr, ERROR_RESOURCE_TYPE_NOT_FOUND};
}

const ResourceTable::Entry* ResourceTable::FromHandle(const void* handle) const {
  const auto found = std::ranges::find_if(entries_, [&](const Entry& entry) { return &entry == handle; });
  return found == entries_.end() ? nullptr : &*found;
}

ResourceName ResourceNameOf(LPCWSTR name) {
  if (IS_INTRESOURCE(name)) return {{}, static_cast<uint16_t>(reinterpret_cast<ULONG_PTR>(name))};
  const std::u16string_view text = name;
  if (!text.starts_with(u'#')) return {FoldCase(text), 0};
  uint32_t number = 0;
  for (const char16_t digit : text.substr(1)) number = number * 10 + (digit - u'0');
  return {{}, static_cast<uint16_t>(number)};
}

}  // namespace pal
