#include "pal/store/registry_store.h"

#include <algorithm>

#include "pal/text/unicode.h"

namespace pal {
namespace {

constexpr char16_t kSeparator = u'\\';

std::shared_ptr<RegistryKey> MakeKey(std::u16string path, std::u16string_view name) {
  auto key = std::make_shared<RegistryKey>();
  key->path = std::move(path);
  key->name = name;
  return key;
}

// Takes the first name off the path; separators at the end of a path stand for nothing.
std::u16string_view TakeName(std::u16string_view& path) {
  const std::u16string_view name = path.substr(0, path.find(kSeparator));
  path.remove_prefix(std::min(path.size(), name.size() + 1));
  return name;
}

std::shared_ptr<RegistryKey> FindChild(const RegistryKey& key, std::u16string_view name) {
  const auto found =
      std::ranges::find_if(key.keys, [&](const auto& child) { return EqualFolded(child->name, name); });
  return found == key.keys.end() ? nullptr : *found;
}

}  // namespace

RegistryValue* RegistryKey::FindValue(std::u16string_view valueName) {
  const auto found = std::ranges::find_if(
      values, [&](const RegistryValue& value) { return EqualFolded(value.name, valueName); });
  return found == values.end() ? nullptr : &*found;
}

void RegistryKey::SetValue(std::u16string_view valueName, DWORD type, std::vector<uint8_t> data) {
  RegistryValue* value = FindValue(valueName);
  if (!value) {
    value = &values.emplace_back();
    value->name = valueName;
  }
  value->type = type;
  value->data = std::move(data);
}

RegistryStore::RegistryStore()
    : currentUser_(MakeKey(u"HKEY_CURRENT_USER", u"")), localMachine_(MakeKey(u"HKEY_LOCAL_MACHINE", u"")) {}

std::shared_ptr<RegistryKey> RegistryStore::Root(HKEY root) const {
  if (root == HKEY_CURRENT_USER) return currentUser_;
  if (root == HKEY_LOCAL_MACHINE) return localMachine_;
  return nullptr;
}

std::shared_ptr<RegistryKey> RegistryStore::Find(std::shared_ptr<RegistryKey> key, std::u16string_view path) {
  while (key && !path.empty()) key = FindChild(*key, TakeName(path));
  return key;
}

std::shared_ptr<RegistryKey> RegistryStore::Create(std::shared_ptr<RegistryKey> key,
                                                   std::u16string_view path) {
  while (!path.empty()) {
    const std::u16string_view name = TakeName(path);
    std::shared_ptr<RegistryKey> child = FindChild(*key, name);
    if (!child) {
      child = MakeKey(key->path + kSeparator + std::u16string(name), name);
      key->keys.push_back(child);
    }
    key = std::move(child);
  }
  return key;
}

}  // namespace pal
