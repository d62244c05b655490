#include "tools/probe_surroundings.h"

#include <windows.h>

#include <shlobj.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "base/handles.h"
#include "tools/probe_text.h"

namespace probe {
namespace {

using veltra::WideText;

constexpr const WCHAR* kToolKey = TEXT("SOFTWARE\\Veltra\\Sarvik5");

void PrintHeading(const char* what) {
  std::printf("\n== %s\n", what);
}

std::string ValueText(DWORD type, const std::vector<BYTE>& data, DWORD size) {
  if (type == REG_DWORD && size == sizeof(DWORD)) {
    int32_t number = 0;
    std::memcpy(&number, data.data(), sizeof(number));
    return std::to_string(number);
  }
  if (type != REG_SZ) return "type " + std::to_string(type) + ", " + std::to_string(size) + " bytes";
  WideText text(reinterpret_cast<const WCHAR*>(data.data()), size / sizeof(WCHAR));
  text.resize(std::min(text.size(), text.find(WCHAR{0})));
  return Utf8(text);
}

// The values of those names, or all of them.
void PrintKey(const char* what, HKEY root, const WCHAR* path, const std::vector<std::string>& wanted = {}) {
  PrintHeading(what);
  HKEY opened = nullptr;
  if (RegOpenKeyExW(root, path, 0, KEY_READ, &opened) != ERROR_SUCCESS) {
    std::puts("not there");
    return;
  }
  const veltra::UniqueRegistryKey key(opened);
  std::vector<BYTE> data(4096);
  for (DWORD n = 0;; ++n) {
    WCHAR name[256] = {};
    DWORD nameLength = 256;
    DWORD type = 0;
    auto size = static_cast<DWORD>(data.size());
    if (RegEnumValueW(key.Get(), n, name, &nameLength, nullptr, &type, data.data(), &size) != ERROR_SUCCESS)
      return;
    const std::string shown = Utf8(name);
    if (wanted.empty() || std::ranges::find(wanted, shown) != wanted.end())
      std::printf("%-24s%s\n", shown.c_str(), ValueText(type, data, size).c_str());
  }
}

// ---- files --------------------------------------------------------------------------------------------------

WideText OwnFolder() {
  WCHAR path[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  const WideText whole(path);
  return whole.substr(0, whole.rfind('\\') + 1);
}

std::string VersionOf(const WideText& path) {
  std::vector<BYTE> block(GetFileVersionInfoSizeW(path.c_str(), nullptr));
  void* found = nullptr;
  UINT size = 0;
  if (block.empty() ||
      !GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data()) ||
      !VerQueryValueW(block.data(), TEXT("\\"), &found, &size) || size < sizeof(VS_FIXEDFILEINFO))
    return {};
  const auto& version = *static_cast<const VS_FIXEDFILEINFO*>(found);
  std::string text = "version";
  char separator = ' ';
  for (const DWORD part : {version.dwFileVersionMS >> 16, version.dwFileVersionMS & 0xFFFF,
                           version.dwFileVersionLS >> 16, version.dwFileVersionLS & 0xFFFF}) {
    text += separator + std::to_string(part);
    separator = '.';
  }
  return text;
}

void PrintFiles() {
  constexpr const WCHAR* kFiles[] = {
      TEXT("veltratool.exe"),      TEXT("toolprobe.exe"),         TEXT("keapi.dll"),
      TEXT("vJoyInterface.dll"),   TEXT("portmon.dll"),           TEXT("macm_English.dll"),
      TEXT("macm_Nederlands.dll"), TEXT("sarvikkey_English.ini"), TEXT("sarvikkey_Nederlands.ini"),
      TEXT("nircmd.exe"),          TEXT("FlagToggler.exe"),
  };
  PrintHeading("files beside this program");
  const WideText folder = OwnFolder();
  for (const WCHAR* name : kFiles) {
    WIN32_FIND_DATAW found = {};
    const WideText path = folder + name;
    const HANDLE search = FindFirstFileW(path.c_str(), &found);
    const bool isThere = search != INVALID_HANDLE_VALUE;
    if (isThere) FindClose(search);
    std::string what =
        isThere ? std::to_string(found.nFileSizeLow) + " bytes  " + VersionOf(path) : "missing";
    std::printf("%-28s%s\n", Utf8(name).c_str(), what.c_str());
  }
}

void PrintLog(const WCHAR* name) {
  PrintHeading(Utf8(name).c_str());
  WCHAR documents[MAX_PATH] = {};
  SHGetFolderPathW(nullptr, CSIDL_COMMON_DOCUMENTS, nullptr, SHGFP_TYPE_CURRENT, documents);
  const WideText path = WideText(documents) + TEXT("\\Sarvik5\\") + name;
  // Meanwhile the tool may write its next line.
  const veltra::UniqueFile file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                            nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) {
    std::puts("not there");
    return;
  }
  BYTE piece[4096];
  DWORD count = 0;
  while (ReadFile(file.Get(), piece, sizeof(piece), &count, nullptr) && count > 0) {
    WideText text(piece, piece + count);  // one byte for each character
    std::erase(text, WCHAR{'\r'});        // the standard output makes its own line ends
    std::fputs(Utf8(text).c_str(), stdout);
  }
}

}  // namespace

void PrintSurroundings() {
  PrintKey("Windows", HKEY_LOCAL_MACHINE, TEXT("SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion"),
           {"ProductName", "DisplayVersion", "CSDVersion", "CurrentVersion", "CurrentBuild", "UBR"});
  PrintKey("settings of the user", HKEY_CURRENT_USER, kToolKey);
  PrintKey("settings of the machine", HKEY_LOCAL_MACHINE, kToolKey);
  PrintKey("serial ports", HKEY_LOCAL_MACHINE, TEXT("HARDWARE\\DEVICEMAP\\SERIALCOMM"));
  PrintFiles();
  PrintLog(TEXT("DevLog_pt2.txt"));
  PrintLog(TEXT("DevLog.txt"));
}

}  // namespace probe
