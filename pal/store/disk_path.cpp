#include "pal/store/disk_path.h"

#include <algorithm>

#include "pal/text/unicode.h"

namespace pal {
namespace {

bool IsSeparator(char16_t unit) {
  return unit == u'\\' || unit == u'/';
}

bool IsDriveLetter(char16_t unit) {
  return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
}

// Windows forbids these in a name; a surrogate alone has no spelling on the host.
bool IsName(std::u16string_view name) {
  constexpr std::u16string_view kForbidden = u"<>:\"|?*";
  const bool clean = std::ranges::all_of(
      name, [&](char16_t unit) { return unit >= 0x20 && kForbidden.find(unit) == kForbidden.npos; });
  return clean && DecodeUtf8(ToUtf8(name)).text == name;
}

// Windows cuts these off the end of a name.
std::u16string_view WithoutDotsAndBlanks(std::u16string_view name) {
  while (name.ends_with(u'.') || name.ends_with(u' ')) name.remove_suffix(1);
  return name;
}

void AddNames(PathParts& parts, std::u16string_view rest) {
  while (!rest.empty()) {
    const auto end = std::ranges::find_if(rest, IsSeparator);
    const std::u16string_view name(rest.begin(), end);
    rest.remove_prefix(std::min(rest.size(), name.size() + 1));
    if (name.empty() || name == u".") continue;
    if (name == u"..") {
      if (!parts.names.empty()) parts.names.pop_back();
      continue;
    }
    const std::u16string_view kept = WithoutDotsAndBlanks(name);
    if (kept.empty() || !IsName(kept)) parts.error = ERROR_INVALID_NAME;
    parts.names.emplace_back(kept);
  }
}

}  // namespace

PathParts TakePathApart(std::u16string_view path, std::u16string_view directory) {
  PathParts parts;
  if (path.empty()) {
    parts.error = ERROR_PATH_NOT_FOUND;
  } else if (path.size() >= 2 && IsSeparator(path[0]) && IsSeparator(path[1])) {
    // Another computer, or a device: there is none on this disk.
    parts.error = path.starts_with(u"\\\\.\\") ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
  } else if (path.size() >= 2 && path[1] == u':' && IsDriveLetter(path[0])) {
    parts.drive = FoldCase(path.substr(0, 1)).front();
    const bool fromRoot = path.size() > 2 && IsSeparator(path[2]);
    const bool isOfDirectory = directory.starts_with(parts.drive);  // on other drives it is the root
    if (!fromRoot && isOfDirectory) parts.names = TakePathApart(directory, {}).names;
    AddNames(parts, path.substr(2));
  } else {
    parts = TakePathApart(directory, {});
    if (IsSeparator(path[0])) parts.names.clear();
    AddNames(parts, path);
  }
  if (parts.error == ERROR_SUCCESS && JoinPath(parts).size() >= MAX_PATH) parts.error = ERROR_PATH_NOT_FOUND;
  return parts;
}

std::u16string JoinPath(const PathParts& parts) {
  std::u16string path = {parts.drive, u':'};
  if (parts.names.empty()) path += u'\\';
  for (const std::u16string& name : parts.names) path += u'\\' + name;
  return path;
}

}  // namespace pal
