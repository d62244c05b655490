#include "pal/store/registry.h"

#include <algorithm>

#include "pal/machine/machine_mutex.h"
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

Registry::Registry(MachineMutex& mutex)
    : mutex_(mutex),
      currentUser_(MakeKey(u"HKEY_CURRENT_USER", u"")),
      localMachine_(MakeKey(u"HKEY_LOCAL_MACHINE", u"")) {}

void Registry::Set(HKEY root, std::u16string_view path, std::u16string_view name, DWORD type,
                   std::span<const uint8_t> data) {
  const MachineLock lock(mutex_);
  Create(NeedRoot(root), path)->SetValue(name, type, {data.begin(), data.end()});
}

void Registry::SetDword(HKEY root, std::u16string_view path, std::u16string_view name, uint32_t value) {
  uint8_t bytes[sizeof(value)];
  for (size_t i = 0; i < sizeof(value); ++i) bytes[i] = static_cast<uint8_t>(value >> (8 * i));
  Set(root, path, name, REG_DWORD, bytes);
}

std::optional<uint32_t> Registry::Dword(HKEY root, std::u16string_view path, std::u16string_view name) const {
  const MachineLock lock(mutex_);
  const auto key = Find(NeedRoot(root), path);
  const RegistryValue* value = key ? key->FindValue(name) : nullptr;
  if (!value || value->type != REG_DWORD || value->data.size() != sizeof(uint32_t)) return std::nullopt;
  uint32_t number = 0;
  for (size_t i = sizeof(number); i-- > 0;) number = number << 8 | value->data[i];
  return number;
}

std::vector<std::u16string> Registry::ValueNames(HKEY root, std::u16string_view path) const {
  const MachineLock lock(mutex_);
  std::vector<std::u16string> names;
  if (const auto key = Find(NeedRoot(root), path))
    for (const RegistryValue& value : key->values) names.push_back(value.name);
  return names;
}

std::shared_ptr<RegistryKey> Registry::NeedRoot(HKEY root) const {
  auto key = Root(root);
  if (!key) Die("no root of the registry");
  return key;
}

std::shared_ptr<RegistryKey> Registry::Root(HKEY root) const {
  if (root == HKEY_CURRENT_USER) return currentUser_;
  if (root == HKEY_LOCAL_MACHINE) return localMachine_;
  return nullptr;
}

std::shared_ptr<RegistryKey> Registry::Find(std::shared_ptr<RegistryKey> key, std::u16string_view path) {
  while (key && !path.empty()) key = FindChild(*key, TakeName(path));
  return key;
}

std::shared_ptr<RegistryKey> Registry::Create(std::shared_ptr<RegistryKey> key, std::u16string_view path) {
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
