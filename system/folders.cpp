#include "system/folders.h"

#include <shlobj.h>

namespace veltra {
namespace {

WideText WithBackslash(WideText folder) {
  if (!folder.ends_with('\\')) folder += TEXT("\\");
  return folder;
}

}  // namespace

WideText GetDeviceModelName() {
  return TEXT("Sarvik5");
}

WideText ModuleDirectory() {
  WCHAR path[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
  if (length == 0 || length == MAX_PATH) return {};
  const WideView whole(path, length);
  return WideText(whole.substr(0, whole.rfind('\\') + 1));
}

WideText GetDataFolder() {
  WCHAR documents[MAX_PATH] = {};
  const HRESULT result = SHGetFolderPathW(nullptr, CSIDL_COMMON_DOCUMENTS | CSIDL_FLAG_CREATE, nullptr,
                                          SHGFP_TYPE_CURRENT, documents);
  const WideText parent = SUCCEEDED(result) ? WithBackslash(documents) : ModuleDirectory();
  WideText folder = WithBackslash(parent + GetDeviceModelName());
  CreateDirectoryW(folder.c_str(), nullptr);
  return folder;
}

}  // namespace veltra
