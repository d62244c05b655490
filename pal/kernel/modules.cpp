#include "pal/kernel/modules.h"

#include <algorithm>

#include "pal/machine/machine_mutex.h"
#include "pal/store/disk.h"
#include "pal/text/unicode.h"

namespace pal {

namespace {

std::u16string PathOf(std::u16string_view fileName) {
  return std::u16string(Disk::kProgramDirectory).append(fileName);
}

}  // namespace

void Modules::Add(std::u16string_view fileName, std::vector<Export> exports) {
  const MachineLock lock(mutex_);
  Remove(fileName);
  files_.push_back(std::make_shared<const ModuleFile>(ModuleFile{PathOf(fileName), std::move(exports)}));
}

void Modules::Remove(std::u16string_view fileName) {
  const MachineLock lock(mutex_);
  const std::u16string path = PathOf(fileName);
  std::erase_if(files_, [&](const auto& file) { return EqualFolded(file->path, path); });
}

std::shared_ptr<const ModuleFile> Modules::FindFile(std::u16string_view path) const {
  const auto found =
      std::ranges::find_if(files_, [&](const auto& file) { return EqualFolded(file->path, path); });
  return found == files_.end() ? nullptr : *found;
}

std::shared_ptr<LoadedModule> Modules::FindLoaded(std::u16string_view name) {
  std::erase_if(loaded_, [](const std::weak_ptr<LoadedModule>& module) { return module.expired(); });
  const bool isPath = FileNameOf(name) != name;
  for (const std::weak_ptr<LoadedModule>& weak : loaded_) {
    std::shared_ptr<LoadedModule> module = weak.lock();
    const std::u16string_view path = module->File().path;
    if (EqualFolded(isPath ? path : FileNameOf(path), name)) return module;
  }
  return nullptr;
}

std::u16string_view FileNameOf(std::u16string_view path) {
  return path.substr(path.find_last_of(u"\\/:") + 1);
}

}  // namespace pal
