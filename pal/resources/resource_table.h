// The resources of the program.
#pragma once

#include <windows.h>

#include <compare>
#include <filesystem>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace pal {

class MachineMutex;

// Name or type of a resource: a number, or a text in upper case.
struct ResourceName {
  std::u16string text;  // empty for a number
  WORD number = 0;

  auto operator<=>(const ResourceName&) const = default;
};

struct ResourceKey {
  ResourceName type;
  ResourceName name;
  LANGID language = 0;

  auto operator<=>(const ResourceKey&) const = default;
};

class ResourceTable {
 public:
  using Entry = std::pair<const ResourceKey, std::vector<uint8_t>>;

  explicit ResourceTable(MachineMutex& mutex) : mutex_(mutex) {}

  // A file of the host that the resource compiler wrote (.res): string tables, version, menus, dialogs,
  // icons, sounds. They take the place of what was there before; a damaged file is the end.
  void Load(const std::filesystem::path& path);
  void Load(std::span<const uint8_t> content);

  // ---- for the calls of Windows ----
  // In the language, or else in the nearest: its primary language, no language; for LANG_NEUTRAL then the
  // languages of the thread and of the user, and English. Null when there is none.
  [[nodiscard]] const Entry* Find(const ResourceName& type, const ResourceName& name, LANGID language) const;
  // Whether a handle stands for one of these resources.
  [[nodiscard]] const Entry* FromHandle(const void* handle) const;
  // The whole resource whose bytes begin there. Templates come without a size; one that the program made up
  // is not known.
  [[nodiscard]] std::span<const uint8_t> At(const void* data) const;

 private:
  MachineMutex& mutex_;
  // Each for itself, so that AddressSanitizer sees who reads past an end.
  std::map<ResourceKey, std::vector<uint8_t>> entries_;
};

// What FindResourceExW and its like take: MAKEINTRESOURCEW or a text.
ResourceName ResourceNameOf(LPCWSTR name);

}  // namespace pal
