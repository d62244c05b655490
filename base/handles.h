// Windows handles that close themselves. The invalid value and the closing call belong to the type.
#pragma once

#include <windows.h>

#include <utility>

namespace veltra {

template <class Kind>
class UniqueHandle {
 public:
  using Handle = typename Kind::Handle;

  UniqueHandle() = default;
  explicit UniqueHandle(Handle handle) : handle_(handle) {}
  ~UniqueHandle() { Reset(); }
  UniqueHandle(UniqueHandle&& other) noexcept : handle_(std::exchange(other.handle_, Kind::Invalid())) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    if (this != &other) Reset(std::exchange(other.handle_, Kind::Invalid()));
    return *this;
  }
  UniqueHandle(const UniqueHandle&) = delete;
  UniqueHandle& operator=(const UniqueHandle&) = delete;

  explicit operator bool() const { return handle_ != Kind::Invalid(); }
  [[nodiscard]] Handle Get() const { return handle_; }
  void Reset(Handle handle = Kind::Invalid()) {
    const Handle old = std::exchange(handle_, handle);
    if (old != Kind::Invalid()) Kind::Close(old);
  }

 private:
  Handle handle_ = Kind::Invalid();
};

struct KernelObjectKind {  // events, mutexes, threads, processes
  using Handle = HANDLE;
  static Handle Invalid() { return nullptr; }
  static void Close(Handle handle) { CloseHandle(handle); }
};
struct FileKind {  // CreateFileW
  using Handle = HANDLE;
  static Handle Invalid() { return INVALID_HANDLE_VALUE; }
  static void Close(Handle handle) { CloseHandle(handle); }
};
struct RegistryKeyKind {
  using Handle = HKEY;
  static Handle Invalid() { return nullptr; }
  static void Close(Handle handle) { RegCloseKey(handle); }
};
struct ModuleKind {  // LoadLibraryExW
  using Handle = HMODULE;
  static Handle Invalid() { return nullptr; }
  static void Close(Handle handle) { FreeLibrary(handle); }
};

struct IconKind {
  using Handle = HICON;
  static Handle Invalid() { return nullptr; }
  static void Close(Handle handle) { DestroyIcon(handle); }
};
struct MenuKind {
  using Handle = HMENU;
  static Handle Invalid() { return nullptr; }
  static void Close(Handle handle) { DestroyMenu(handle); }
};

struct BrushKind {
  using Handle = HBRUSH;
  static Handle Invalid() { return nullptr; }
  static void Close(Handle handle) { DeleteObject(handle); }
};
struct DesktopKind {
  using Handle = HDESK;
  static Handle Invalid() { return nullptr; }
  static void Close(Handle handle) { CloseDesktop(handle); }
};

using UniqueKernelObject = UniqueHandle<KernelObjectKind>;
using UniqueFile = UniqueHandle<FileKind>;
using UniqueRegistryKey = UniqueHandle<RegistryKeyKind>;
using UniqueModule = UniqueHandle<ModuleKind>;
using UniqueIcon = UniqueHandle<IconKind>;
using UniqueMenu = UniqueHandle<MenuKind>;
using UniqueBrush = UniqueHandle<BrushKind>;
using UniqueDesktop = UniqueHandle<DesktopKind>;

// The function that a module exports under that name, null when it has none.
template <class Function>
Function FindExport(HMODULE module, const char* name) {
  if (!module) return nullptr;
  const FARPROC address = GetProcAddress(module, name);
  return reinterpret_cast<Function>(reinterpret_cast<void*>(address));
}

}  // namespace veltra
