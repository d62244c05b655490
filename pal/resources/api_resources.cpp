// The program's resources and its version information.
#include <algorithm>

#include "pal/machine/state.h"
#include "pal/resources/version_block.h"
#include "pal/text/unicode.h"

using namespace pal;

namespace {

// Only the program itself has resources.
void CheckModule(HMODULE module) {
  if (module && module != ProgramInstance()) Die("resources of another module than the program");
}

// The version information of the file, null and the last error set when there is none.
const ResourceTable::Entry* FindVersion(const Call& call, LPCWSTR fileName) {
  const DiskPath file = call->disk.Locate(OrEmpty(fileName));
  if (!EqualFolded(file.windows, Disk::kProgramFile))
    return Refuse<const ResourceTable::Entry*>(
        file.exists ? ERROR_RESOURCE_DATA_NOT_FOUND : ERROR_FILE_NOT_FOUND, nullptr);
  const auto* found = call->resources.Find(ResourceNameOf(RT_VERSION),
                                           ResourceNameOf(MAKEINTRESOURCEW(VS_VERSION_INFO)), LANG_NEUTRAL);
  if (!found || !IsVersionBlock(found->second))
    return Refuse<const ResourceTable::Entry*>(ERROR_RESOURCE_DATA_NOT_FOUND, nullptr);
  return found;
}

}  // namespace

HRSRC WINAPI FindResourceExW(HMODULE module, LPCWSTR type, LPCWSTR name, WORD language) {
  const Call call("FindResourceExW");
  if (call.Fails()) return nullptr;
  CheckModule(module);
  const auto* found = call->resources.Find(ResourceNameOf(type), ResourceNameOf(name), language);
  if (!found) return Refuse(ERROR_RESOURCE_NAME_NOT_FOUND, HRSRC{});
  return reinterpret_cast<HRSRC>(const_cast<ResourceTable::Entry*>(found));
}

HGLOBAL WINAPI LoadResource(HMODULE module, HRSRC resource) {
  const Call call("LoadResource");
  if (call.Fails()) return nullptr;
  CheckModule(module);
  const ResourceTable::Entry* entry = call->resources.FromHandle(resource);
  if (!entry) return Refuse(ERROR_INVALID_HANDLE, HGLOBAL{});
  return const_cast<uint8_t*>(entry->second.data());
}

LPVOID WINAPI LockResource(HGLOBAL resource) {
  return resource;
}

DWORD WINAPI SizeofResource(HMODULE module, HRSRC resource) {
  const Call call("SizeofResource");
  if (call.Fails()) return 0;
  CheckModule(module);
  const ResourceTable::Entry* entry = call->resources.FromHandle(resource);
  if (!entry) return Refuse<DWORD>(ERROR_INVALID_HANDLE, 0);
  return static_cast<DWORD>(entry->second.size());
}

DWORD WINAPI GetFileVersionInfoSizeW(LPCWSTR fileName, LPDWORD handle) {
  const Call call("GetFileVersionInfoSizeW");
  if (call.Fails()) return 0;
  if (handle) *handle = 0;
  const ResourceTable::Entry* version = FindVersion(call, fileName);
  return version ? static_cast<DWORD>(version->second.size()) : 0;
}

BOOL WINAPI GetFileVersionInfoW(LPCWSTR fileName, DWORD /*handle*/, DWORD size, LPVOID data) {
  const Call call("GetFileVersionInfoW");
  if (call.Fails()) return FALSE;
  const ResourceTable::Entry* version = FindVersion(call, fileName);
  if (!version) return FALSE;
  if (!data || size < version->second.size()) return Refuse(ERROR_INSUFFICIENT_BUFFER, FALSE);
  std::ranges::copy(version->second, static_cast<uint8_t*>(data));
  return TRUE;
}

BOOL WINAPI VerQueryValueW(LPCVOID block, LPCWSTR path, LPVOID* value, PUINT length) {
  const Call call("VerQueryValueW");
  if (call.Fails()) return FALSE;
  const std::optional<VersionValue> found = FindVersionValue(static_cast<const uint8_t*>(block), path);
  if (!found) {
    if (length) *length = 0;
    return Refuse(ERROR_RESOURCE_TYPE_NOT_FOUND, FALSE);
  }
  *value = const_cast<uint8_t*>(found->data);
  if (length) *length = found->length;
  return TRUE;
}
