// The program, the modules that it loads, and what they export.
#include <wtsapi32.h>

#include <algorithm>
#include <optional>
#include <span>

#include "pal/machine/state.h"
#include "pal/store/disk_path.h"
#include "pal/text/unicode.h"

using namespace pal;

namespace {

constexpr DWORD kKnownFlags =
    LOAD_WITH_ALTERED_SEARCH_PATH | LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32;
constexpr std::u16string_view kSystemDirectory = u"C:\\Windows\\System32\\";

template <class Function>
Export MakeExport(const char* name, Function* function) {
  return {name, reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function))};
}

// Libraries of Windows, with the exports that programs look up by name.
struct SystemLibrary {
  std::u16string_view file;
  ULONG_PTR handle;
  std::vector<Export> exports;
};
const std::vector<SystemLibrary>& SystemLibraries() {
  static const std::vector<SystemLibrary> libraries = {
      {u"kernel32.dll",
       0x7FF800000000,
       {MakeExport("CancelIoEx", CancelIoEx), MakeExport("IsWow64Process", IsWow64Process),
        MakeExport("SetDefaultDllDirectories", SetDefaultDllDirectories),
        MakeExport("SetThreadUILanguage", SetThreadUILanguage),
        MakeExport("Wow64EnableWow64FsRedirection", Wow64EnableWow64FsRedirection)}},
      {u"user32.dll",
       0x7FF810000000,
       {MakeExport("ChangeWindowMessageFilterEx", ChangeWindowMessageFilterEx),
        MakeExport("GetDpiForWindow", GetDpiForWindow),
        MakeExport("GetSystemMetricsForDpi", GetSystemMetricsForDpi),
        MakeExport("RegisterSuspendResumeNotification", RegisterSuspendResumeNotification)}},
      {u"wtsapi32.dll",
       0x7FF820000000,
       {MakeExport("WTSRegisterSessionNotification", WTSRegisterSessionNotification)}},
  };
  return libraries;
}

// What a newer Windows brought.
struct Newcomer {
  std::string_view name;
  WORD major;
  WORD minor;
};
constexpr Newcomer kNewcomers[] = {{"RegisterSuspendResumeNotification", 6, 2},
                                   {"GetDpiForWindow", 10, 0},
                                   {"GetSystemMetricsForDpi", 10, 0}};

bool IsMissing(const WindowsVersion& version, std::string_view name) {
  const auto* row = std::ranges::find(kNewcomers, name, &Newcomer::name);
  return row != std::end(kNewcomers) &&
         std::pair(version.major, version.minor) < std::pair(row->major, row->minor);
}

// Windows takes a name without an extension for that of a DLL.
std::u16string WithExtension(std::u16string_view name) {
  std::u16string whole(name);
  if (FileNameOf(name).find(u'.') == name.npos) whole += u".dll";
  return whole;
}

bool IsFullPath(std::u16string_view name) {
  return name.size() > 2 && name[1] == u':';
}

std::u16string InFull(const std::u16string& name) {
  const PathParts parts = TakePathApart(name, Disk::kProgramDirectory);
  return parts.error == ERROR_SUCCESS ? JoinPath(parts) : name;
}

// The handle of a module that is there without being loaded by the program.
HMODULE FindBuiltIn(const std::u16string& name) {
  const auto is = [&name](std::u16string_view file) {
    return EqualFolded(name, file) || EqualFolded(name, FileNameOf(file));
  };
  for (const SystemLibrary& library : SystemLibraries())
    if (is(std::u16string(kSystemDirectory).append(library.file)))
      return reinterpret_cast<HMODULE>(library.handle);
  return is(Disk::kProgramFile) ? ProgramInstance() : nullptr;
}

HMODULE Load(const Call& call, LPCWSTR fileName, DWORD flags) {
  if ((flags & ~kKnownFlags) != 0) Die("LoadLibraryExW: unknown flags");
  if (!fileName || *fileName == 0) return Refuse(ERROR_INVALID_PARAMETER, HMODULE{});
  std::u16string name = WithExtension(fileName);
  if (IsFullPath(name)) name = InFull(name);
  if (const HMODULE builtIn = FindBuiltIn(name)) return builtIn;
  Modules& modules = call->modules;
  if (const auto loaded = modules.FindLoaded(name)) {
    ++loaded->references;
    return loaded->handle;
  }
  // Nothing is searched for: a name alone would find whatever a stranger left somewhere on the way.
  const auto file = IsFullPath(name) ? modules.FindFile(name) : nullptr;
  if (!file && IsFullPath(name) && call->disk.Locate(name).IsFile())
    return Refuse(ERROR_BAD_EXE_FORMAT, HMODULE{});  // a file, and no library
  if (!file) return Refuse(ERROR_MOD_NOT_FOUND, HMODULE{});
  const auto module = std::make_shared<LoadedModule>(file);
  module->handle = static_cast<HMODULE>(call->handles.Add(module));
  modules.Remember(module);
  call->Emit(ModuleLoaded{file->path, flags, modules.search});
  return module->handle;
}

// What the module exports; empty when there is no such module.
std::optional<std::span<const Export>> ExportsOf(const Call& call, HMODULE module) {
  if (!module || module == ProgramInstance()) return std::span<const Export>();
  for (const SystemLibrary& library : SystemLibraries())
    if (module == reinterpret_cast<HMODULE>(library.handle)) return library.exports;
  const auto loaded = call->handles.Find<LoadedModule>(module);
  if (!loaded) return std::nullopt;
  return std::span(loaded->File().exports);
}

}  // namespace

HMODULE WINAPI GetModuleHandleW(LPCWSTR name) {
  const Call call("GetModuleHandleW");
  if (call.Fails()) return nullptr;
  if (!name) return ProgramInstance();
  std::u16string whole = WithExtension(name);
  if (IsFullPath(whole)) whole = InFull(whole);
  if (const HMODULE builtIn = FindBuiltIn(whole)) return builtIn;
  const auto loaded = call->modules.FindLoaded(whole);
  return loaded ? loaded->handle : Refuse(ERROR_MOD_NOT_FOUND, HMODULE{});
}

DWORD WINAPI GetModuleFileNameW(HMODULE module, LPWSTR name, DWORD size) {
  const Call call("GetModuleFileNameW");
  if (call.Fails()) return 0;
  if (module) Die("GetModuleFileNameW of another module than the program");
  if (size <= Disk::kProgramFile.size()) Die("GetModuleFileNameW without room");
  *std::ranges::copy(Disk::kProgramFile, name).out = 0;
  return static_cast<DWORD>(Disk::kProgramFile.size());
}

UINT WINAPI SetErrorMode(UINT mode) {
  const Call call("SetErrorMode");
  return std::exchange(call->modules.search.errorMode, mode);
}

BOOL WINAPI SetDllDirectoryW(LPCWSTR directory) {
  const Call call("SetDllDirectoryW");
  if (!directory || *directory != 0) Die("SetDllDirectoryW with a directory");
  call->modules.search.usesCurrentDirectory = false;
  return TRUE;
}

BOOL WINAPI SetDefaultDllDirectories(DWORD places) {
  const Call call("SetDefaultDllDirectories");
  call->modules.search.places = places;
  return TRUE;
}

HMODULE WINAPI LoadLibraryExW(LPCWSTR fileName, HANDLE file, DWORD flags) {
  const Call call("LoadLibraryExW");
  if (file) Die("LoadLibraryExW with a file handle");
  return call.Fails() ? nullptr : Load(call, fileName, flags);
}

BOOL WINAPI FreeLibrary(HMODULE module) {
  const Call call("FreeLibrary");
  if (call.Fails()) return FALSE;
  const auto loaded = call->handles.Find<LoadedModule>(module);
  if (!loaded) return Refuse(ERROR_MOD_NOT_FOUND, FALSE);
  if (--loaded->references > 0) return TRUE;
  call->handles.Close(module);
  call->Emit(ModuleFreed{loaded->File().path});
  return TRUE;
}

FARPROC WINAPI GetProcAddress(HMODULE module, LPCSTR name) {
  const Call call("GetProcAddress");
  if (call.Fails()) return nullptr;
  if (reinterpret_cast<ULONG_PTR>(name) <= 0xFFFF) Die("GetProcAddress by number");
  const auto exports = ExportsOf(call, module);
  if (!exports) return Refuse(ERROR_MOD_NOT_FOUND, FARPROC{});
  const auto found = std::ranges::find(*exports, std::string_view(name), &Export::name);
  const bool isThere = found != exports->end() && !IsMissing(call->system.version, name);
  return isThere ? found->address : Refuse(ERROR_PROC_NOT_FOUND, FARPROC{});
}
