// Private-profile (ini) files. Each call reads the file again.
#include <algorithm>
#include <fstream>
#include <iterator>

#include "pal/machine/state.h"
#include "pal/store/private_profile.h"

using namespace pal;

namespace {

DiskPath LocateProfile(const Call& call, LPCWSTR fileName) {
  const std::u16string_view name = OrEmpty(fileName);
  if (name.size() < 3 || name[1] != u':')
    Die("a profile without its full path lies in Windows' own directory");
  return call->disk.Locate(name);
}

// The text of the profile; empty, and the last error set, when it cannot be read.
std::optional<ProfileText> Read(const Call& call, const DiskPath& path) {
  if (const DWORD error = path.ErrorIfMissing()) return Refuse(error, std::optional<ProfileText>());
  if (path.isDirectory) return Refuse(ERROR_ACCESS_DENIED, std::optional<ProfileText>());
  if (!call->disk.Open(path.host, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE))
    return Refuse(ERROR_SHARING_VIOLATION, std::optional<ProfileText>());
  std::ifstream file(path.host, std::ios::binary);
  SetLastError(ERROR_SUCCESS);
  return DecodeProfile(std::string(std::istreambuf_iterator<char>(file), {}));
}

std::optional<std::u16string> FindValue(const Call& call, LPCWSTR section, LPCWSTR key, LPCWSTR fileName) {
  if (!section || !key) Die("lists of sections and of keys are not known");
  const std::optional<ProfileText> profile = Read(call, LocateProfile(call, fileName));
  return profile ? FindProfileValue(profile->text, section, key) : std::nullopt;
}

// Strings one after another, each with a terminator, and an empty one at the end.
std::vector<std::u16string> SplitLines(LPCWSTR lines) {
  std::vector<std::u16string> split;
  for (; *lines != 0; lines += split.back().size() + 1) split.emplace_back(lines);
  return split;
}

DWORD ErrorOfWriting(const Call& call, const DiskPath& path) {
  if (path.error != ERROR_SUCCESS) return path.error;
  if (path.isDirectory || path.isReadOnly) return ERROR_ACCESS_DENIED;
  if (path.exists && !call->disk.Open(path.host, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ))
    return ERROR_SHARING_VIOLATION;
  return ERROR_SUCCESS;
}

}  // namespace

DWORD WINAPI GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR defaultText, LPWSTR result,
                                      DWORD size, LPCWSTR fileName) {
  const Call call("GetPrivateProfileStringW");
  if (size == 0) Die("GetPrivateProfileStringW without room for the result");
  std::optional<std::u16string> value;
  if (!call.Fails()) value = FindValue(call, section, key, fileName);
  const std::u16string text = value.value_or(defaultText ? defaultText : u"");
  const std::u16string_view fitting = std::u16string_view(text).substr(0, size - 1);
  *std::ranges::copy(fitting, result).out = 0;
  return static_cast<DWORD>(fitting.size());
}

UINT WINAPI GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT defaultNumber, LPCWSTR fileName) {
  const Call call("GetPrivateProfileIntW");
  std::optional<std::u16string> value;
  if (!call.Fails()) value = FindValue(call, section, key, fileName);
  return value && !value->empty() ? ProfileNumber(*value) : static_cast<UINT>(defaultNumber);
}

// What does not fit is cut, and the result then ends in two terminators.
DWORD WINAPI GetPrivateProfileSectionW(LPCWSTR section, LPWSTR lines, DWORD size, LPCWSTR fileName) {
  const Call call("GetPrivateProfileSectionW");
  if (!section || size < 2) Die("GetPrivateProfileSectionW without a section or room");
  std::u16string result;
  const std::optional<ProfileText> profile =
      call.Fails() ? std::nullopt : Read(call, LocateProfile(call, fileName));
  if (profile)
    for (const std::u16string& line : ProfileSectionLines(profile->text, section))
      (result += line).push_back(0);
  const bool fits = result.size() < size;
  if (!fits) result.resize(size - 2);
  std::ranges::copy(result, lines);
  lines[result.size()] = 0;
  if (!fits) lines[size - 1] = 0;
  return static_cast<DWORD>(result.size());
}

BOOL WINAPI WritePrivateProfileSectionW(LPCWSTR section, LPCWSTR lines, LPCWSTR fileName) {
  const Call call("WritePrivateProfileSectionW");
  if (!section || !lines) Die("WritePrivateProfileSectionW: removing a section is not known");
  if (call.Fails()) return FALSE;
  const DiskPath path = LocateProfile(call, fileName);
  if (const DWORD error = ErrorOfWriting(call, path)) return Refuse(error, FALSE);
  ProfileText profile;
  if (path.exists) profile = Read(call, path).value_or(ProfileText());
  profile.text = ReplaceProfileSection(profile.text, section, SplitLines(lines));
  const std::string bytes = EncodeProfile(profile);
  call->disk.Write(path.windows, bytes);
  call->Emit(FileWrite{path.windows, bytes});
  return TRUE;
}
