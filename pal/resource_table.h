// The resources of the program.
#pragma once

#include <windows.h>

#include <map>
#include <span>
#include <vector>

#include "pal/resource_script.h"

namespace pal {

class ResourceTable {
 public:
  using Entry = std::pair<const ResourceKey, std::vector<uint8_t>>;

  // Takes the place of what was there before.
  void Load(std::vector<Resource> resources);

  struct Found {
    const Entry* entry = nullptr;
    DWORD error = ERROR_SUCCESS;  // type, name or language is missing
  };
  // In the language, or else in the nearest: its primary language, no language; for LANG_NEUTRAL then the
  // languages of the thread and of the user, English, and whatever there is.
  [[nodiscard]] Found Find(const ResourceName& type, const ResourceName& name, LANGID language) const;
  // Whether a handle stands for one of these resources.
  [[nodiscard]] const Entry* FromHandle(const void* handle) const;

 private:
  std::map<ResourceKey, std::vector<uint8_t>> entries_;
};

// What FindResourceW and its like take: MAKEINTRESOURCEW, a text, or a text "#" and a number.
ResourceName ResourceNameOf(LPCWSTR name);

}  // namespace pal
