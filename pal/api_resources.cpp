// The program's resources and its version information.
#include <algorithm>
#include <cstring>

#include "pal/data_state.h"
#include "pal/state.h"
#include "pal/unicode.h"
#include "pal/version_block.h"

using namespace pal;

namespace {

constexpr size_t kStringsInBlock = 16;

// Only the program itself has resources.
void CheckModule(HMODULE module) {
  if (module && module != ProgramInstance()) Die("resources of another module than the program");
}

HRSRC Find(const Call& call, LPCWSTR type, LPCWSTR name, LANGID language) {
  const auto found = call->data->resources.Find(ResourceNameOf(type), ResourceNameOf(name), language);
  if (!found.entry) return Refuse(found.error, HRSRC{});
  return reinterpret_cast<HRSRC>(const_cast<ResourceTable::Entry*>(found.entry));
}

// The 16-bit units of a resource.
std::u16string_view UnitsOf(const ResourceTable::Entry& entry) {
  return {reinterpret_cast<const char16_t*>(entry.second.data()), entry.second.size() / sizeof(char16_t)};
}

// A string of a block of 16, each behind its length.
std::u16string_view StringInBlock(std::u16string_view block, size_t index) {
  for (; !block.empty(); --index) {
    const size_t length = block.front();
    block.remove_prefix(1);
    if (index == 0) return block.substr(0, length);
    block.remove_prefix(std::min(block.size(), length));
  }
  return {};
}

// The version information of the file, null and the last error set when there is none.
const ResourceTable::Entry* FindVersion(const Call& call, LPCWSTR fileName) {
  const DiskPath file =
      call->data->disk.Locate(fileName ? std::u16string_view(fileName) : std::u16string_view());
  if (!EqualFolded(file.windows, Machine::kProgramFile))
    return Refuse<const ResourceTable::Entry*>(
        file.exists ? ERROR_RESOURCE_DATA_NOT_FOUND : ERROR_FILE_NOT_FOUND, nullptr);
  const auto found = call->data->resources.Find(ResourceNameOf(RT_VERSION),
                                                ResourceNameOf(MAKEINTRESOURCEW(VS_VERSION_INFO)),
                                                MAKELANGID(LANG_NEUTRAL, SUBLANG_NEUTRAL));
  if (!found.entry) SetLastError(found.error);
  return found.entry;
}

}  // namespace

HRSRC WINAPI FindResourceExW(HMODULE module, LPCWSTR type, LPCWSTR name, WORD language) {
  const Call call("FindResourceExW");
  if (call.Fails()) return nullptr;
  CheckModule(module);
  return Find(call, type, name, language);
}

HGLOBAL WINAPI LoadResource(HMODULE module, HRSRC resource) {
  const Call call("LoadResource");
  if (call.Fails()) return nullptr;
  CheckModule(module);
  const ResourceTable::Entry* entry = call->data->resources.FromHandle(resource);
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
  const ResourceTable::Entry* entry = call->data->resources.FromHandle(resource);
  if (!entry) return Refuse<DWORD>(ERROR_INVALID_HANDLE, 0);
  return static_cast<DWORD>(entry->second.size());
}

int WINAPI LoadStringW(HINSTANCE instance, UINT id, LPWSTR buffer, int size) {
  const Call call("LoadStringW");
  if (call.Fails()) return 0;
  CheckModule(instance);
  if (!buffer || size < 0) return 0;
  const ResourceName block = {{}, static_cast<uint16_t>((id & 0xFFFF) / kStringsInBlock + 1)};
  const auto found =
      call->data->resources.Find(ResourceNameOf(RT_STRING), block, MAKELANGID(LANG_NEUTRAL, SUBLANG_NEUTRAL));
  const std::u16string_view text =
      found.entry ? StringInBlock(UnitsOf(*found.entry), id % kStringsInBlock) : std::u16string_view();
  if (size == 0) {  // the caller wants to look at the resource itself: the buffer takes a pointer
    const char16_t* place = text.data();
    std::memcpy(buffer, &place, sizeof(place));
    return static_cast<int>(text.size());
  }
  const std::u16string_view fitting = text.substr(0, static_cast<size_t>(size) - 1);
  *std::ranges::copy(fitting, buffer).out = 0;
  return static_cast<int>(fitting.size());
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
