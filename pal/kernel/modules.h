// Loadable modules: the files that are there, and what the program has loaded of them.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "pal/kernel/handles.h"
#include "pal/machine/effects.h"

namespace pal {

class MachineMutex;

struct Export {
  std::string name;
  FARPROC address = nullptr;
};

struct ModuleFile {
  std::u16string path;  // in full
  std::vector<Export> exports;
};

// Loaded as often as `references` says; the file may have gone meanwhile.
class LoadedModule : public Object {
 public:
  explicit LoadedModule(std::shared_ptr<const ModuleFile> file) : file_(std::move(file)) {}

  [[nodiscard]] std::string_view Kind() const override { return "module"; }
  [[nodiscard]] const ModuleFile& File() const { return *file_; }

  HMODULE handle = nullptr;
  int references = 1;

 private:
  std::shared_ptr<const ModuleFile> file_;
};

class Modules {
 public:
  explicit Modules(MachineMutex& mutex) : mutex_(mutex) {}

  LibrarySearch search;

  // A DLL in the program's directory; it takes the place of one of the same name. LoadLibrary of its full
  // path finds it, of a bare name does not.
  void Add(std::u16string_view fileName, std::vector<Export> exports);
  void Remove(std::u16string_view fileName);

  // ---- for the calls of Windows ----
  // By full path; null when there is none.
  [[nodiscard]] std::shared_ptr<const ModuleFile> FindFile(std::u16string_view path) const;

  void Remember(const std::shared_ptr<LoadedModule>& module) { loaded_.push_back(module); }
  // By full path or by file name, as the program loaded it; null when it is not loaded.
  [[nodiscard]] std::shared_ptr<LoadedModule> FindLoaded(std::u16string_view name);

 private:
  MachineMutex& mutex_;
  std::vector<std::shared_ptr<const ModuleFile>> files_;
  std::vector<std::weak_ptr<LoadedModule>> loaded_;
};

std::u16string_view FileNameOf(std::u16string_view path);

}  // namespace pal
