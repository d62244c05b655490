// Registry calls.
#include <windows.h>

#include <algorithm>

#include "pal/machine/state.h"
#include "pal/store/registry.h"

using namespace pal;

namespace {

constexpr REGSAM kKnownAccess = KEY_ALL_ACCESS | KEY_READ | KEY_WRITE;

class OpenKey : public Object {
 public:
  OpenKey(std::shared_ptr<RegistryKey> key, REGSAM access) : key_(std::move(key)), access_(access) {}

  [[nodiscard]] std::string_view Kind() const override { return "registry key"; }
  [[nodiscard]] const std::shared_ptr<RegistryKey>& Key() const { return key_; }
  [[nodiscard]] REGSAM Access() const { return access_; }

 private:
  std::shared_ptr<RegistryKey> key_;
  REGSAM access_;
};

// The key behind the handle, when the handle was opened with that access.
struct Reached {
  std::shared_ptr<RegistryKey> key;
  LSTATUS error = ERROR_SUCCESS;
};

Reached Reach(State& state, HKEY handle, REGSAM access) {
  if (const auto root = state.registry.Root(handle)) return {root};
  const auto open = state.handles.Find<OpenKey>(handle);
  if (!open) return {nullptr, ERROR_INVALID_HANDLE};
  if ((open->Access() & access) != access) return {nullptr, ERROR_ACCESS_DENIED};
  return {open->Key()};
}

HKEY AddHandle(State& state, std::shared_ptr<RegistryKey> key, REGSAM access, bool isNew) {
  state.Emit(RegistryOpened{key->path, access, isNew});
  return static_cast<HKEY>(state.handles.Add(std::make_shared<OpenKey>(std::move(key), access)));
}

std::u16string_view CheckPath(std::u16string_view path) {
  if (path.starts_with(u'\\')) Die("a registry path that begins with a backslash");
  return path;
}

void CheckAccess(REGSAM access) {
  if ((access & ~kKnownAccess) != 0) Die("unknown access to a registry key");
}

// What a value is: its type, its size, and its data when there is room.
LSTATUS Tell(const RegistryValue& value, LPDWORD type, LPBYTE data, LPDWORD size) {
  if (type) *type = value.type;
  const auto needed = static_cast<DWORD>(value.data.size());
  const DWORD room = size ? *size : 0;
  if (size) *size = needed;
  if (!data) return ERROR_SUCCESS;
  if (room < needed) return ERROR_MORE_DATA;
  std::ranges::copy(value.data, data);
  return ERROR_SUCCESS;
}

}  // namespace

LSTATUS WINAPI RegOpenKeyExW(HKEY key, LPCWSTR path, DWORD options, REGSAM access, PHKEY opened) {
  const Call call("RegOpenKeyExW");
  if (options != 0) Die("RegOpenKeyExW: unknown options");
  CheckAccess(access);
  if (call.Fails()) return static_cast<LSTATUS>(call.Error());
  if (!opened) return ERROR_INVALID_PARAMETER;
  *opened = nullptr;
  const Reached base = Reach(call.Get(), key, 0);
  if (!base.key) return base.error;
  const auto found = Registry::Find(base.key, CheckPath(OrEmpty(path)));
  if (!found) return ERROR_FILE_NOT_FOUND;
  *opened = AddHandle(call.Get(), found, access, false);
  return ERROR_SUCCESS;
}

LSTATUS WINAPI RegCreateKeyExW(HKEY key, LPCWSTR path, DWORD reserved, LPWSTR keyClass, DWORD options,
                               REGSAM access, LPSECURITY_ATTRIBUTES security, PHKEY opened,
                               LPDWORD disposition) {
  const Call call("RegCreateKeyExW");
  if (keyClass || options != REG_OPTION_NON_VOLATILE || security || disposition)
    Die("RegCreateKeyExW: only plain keys are known");
  CheckAccess(access);
  if (call.Fails()) return static_cast<LSTATUS>(call.Error());
  if (!opened || !path || reserved != 0) return ERROR_INVALID_PARAMETER;
  *opened = nullptr;
  const std::u16string_view keyPath = CheckPath(path);
  const Reached base = Reach(call.Get(), key, 0);
  if (!base.key) return base.error;
  std::shared_ptr<RegistryKey> found = Registry::Find(base.key, keyPath);
  const bool isNew = !found;
  if (isNew) {
    const Reached parent = Reach(call.Get(), key, KEY_CREATE_SUB_KEY);
    if (!parent.key) return parent.error;
    found = Registry::Create(parent.key, keyPath);
  }
  *opened = AddHandle(call.Get(), found, access, isNew);
  return ERROR_SUCCESS;
}

LSTATUS WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                                LPDWORD size) {
  const Call call("RegQueryValueExW");
  if (call.Fails()) return static_cast<LSTATUS>(call.Error());
  if (reserved || (data && !size)) return ERROR_INVALID_PARAMETER;
  const Reached reached = Reach(call.Get(), key, KEY_QUERY_VALUE);
  if (!reached.key) return reached.error;
  const RegistryValue* value = reached.key->FindValue(OrEmpty(name));
  return value ? Tell(*value, type, data, size) : ERROR_FILE_NOT_FOUND;
}

LSTATUS WINAPI RegEnumValueW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameLength, LPDWORD reserved,
                             LPDWORD type, LPBYTE data, LPDWORD size) {
  const Call call("RegEnumValueW");
  if (call.Fails()) return static_cast<LSTATUS>(call.Error());
  if (!name || !nameLength || reserved || (data && !size)) return ERROR_INVALID_PARAMETER;
  const Reached reached = Reach(call.Get(), key, KEY_QUERY_VALUE);
  if (!reached.key) return reached.error;
  if (index >= reached.key->values.size()) return ERROR_NO_MORE_ITEMS;
  const RegistryValue& value = reached.key->values[index];
  if (*nameLength <= value.name.size()) return ERROR_MORE_DATA;
  *std::ranges::copy(value.name, name).out = 0;
  *nameLength = static_cast<DWORD>(value.name.size());
  return Tell(value, type, data, size);
}

LSTATUS WINAPI RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                              DWORD size) {
  const Call call("RegSetValueExW");
  if (call.Fails()) return static_cast<LSTATUS>(call.Error());
  if (reserved != 0 || (!data && size != 0)) return ERROR_INVALID_PARAMETER;
  const Reached reached = Reach(call.Get(), key, KEY_SET_VALUE);
  if (!reached.key) return reached.error;
  const std::u16string_view valueName = OrEmpty(name);
  const std::vector<uint8_t> bytes(data, data + size);
  reached.key->SetValue(valueName, type, bytes);
  call->Emit(RegistryWrite{reached.key->path, std::u16string(valueName), type, bytes});
  return ERROR_SUCCESS;
}

LSTATUS WINAPI RegCloseKey(HKEY key) {
  const Call call("RegCloseKey");
  if (call.Fails()) return static_cast<LSTATUS>(call.Error());
  if (call->registry.Root(key)) return ERROR_SUCCESS;
  if (!call->handles.Find<OpenKey>(key)) return ERROR_INVALID_HANDLE;
  call->handles.Close(key);
  return ERROR_SUCCESS;
}
