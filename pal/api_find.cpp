// Listing directories.
#include <sys/stat.h>

#include <algorithm>
#include <map>

#include "pal/data_state.h"
#include "pal/disk_path.h"
#include "pal/state.h"
#include "pal/unicode.h"

using namespace pal;

namespace {

namespace fs = std::filesystem;

// What a directory held when the search began.
class Search : public Object {
 public:
  explicit Search(std::vector<WIN32_FIND_DATAW> found) : found_(std::move(found)) {}

  [[nodiscard]] std::string_view Kind() const override { return "search"; }
  // False at the end.
  bool Take(WIN32_FIND_DATAW& entry) {
    if (next_ == found_.size()) return false;
    entry = found_[next_++];
    return true;
  }

 private:
  std::vector<WIN32_FIND_DATAW> found_;
  size_t next_ = 0;
};

// Windows counts from the year 1601, in units of 100 ns.
FILETIME ToFileTime(const timespec& time) {
  constexpr int64_t kSecondsFrom1601To1970 = 11'644'473'600;
  const auto ticks =
      static_cast<uint64_t>((time.tv_sec + kSecondsFrom1601To1970) * 10'000'000 + time.tv_nsec / 100);
  return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

WIN32_FIND_DATAW Describe(const DiskPath& path, std::u16string_view name) {
  struct stat status = {};
  stat(path.host.c_str(), &status);
  WIN32_FIND_DATAW entry = {};
  entry.dwFileAttributes = path.Attributes();
  entry.ftCreationTime = entry.ftLastWriteTime = ToFileTime(status.st_mtim);
  entry.ftLastAccessTime = ToFileTime(status.st_atim);
  const uint64_t size = path.isDirectory ? 0 : static_cast<uint64_t>(status.st_size);
  entry.nFileSizeHigh = static_cast<DWORD>(size >> 32);
  entry.nFileSizeLow = static_cast<DWORD>(size);
  std::ranges::copy(name.substr(0, MAX_PATH - 1), entry.cFileName);
  return entry;
}

// In the order of the names, as Windows keeps them.
std::vector<WIN32_FIND_DATAW> List(const Disk& disk, const DiskPath& directory, std::u16string_view pattern) {
  std::map<std::u16string, std::u16string> names = {{u".", u"."}, {u"..", u".."}};
  for (const fs::directory_entry& entry : fs::directory_iterator(directory.host)) {
    const std::u16string name = DecodeUtf8(entry.path().filename().string()).text;
    names.emplace(FoldCase(name), name);
  }
  std::vector<WIN32_FIND_DATAW> found;
  for (const auto& [folded, name] : names)
    if (MatchesPattern(name, pattern))
      found.push_back(Describe(disk.Locate(directory.windows + u'\\' + name), name));
  return found;
}

}  // namespace

HANDLE WINAPI FindFirstFileW(LPCWSTR pattern, LPWIN32_FIND_DATAW found) {
  const Call call("FindFirstFileW");
  if (call.Fails()) return INVALID_HANDLE_VALUE;
  const std::u16string_view whole = pattern ? pattern : u"";
  const size_t cut = whole.find_last_of(u"\\/");
  const std::u16string_view name = cut == whole.npos ? whole : whole.substr(cut + 1);
  if (name.empty()) return Refuse(ERROR_FILE_NOT_FOUND, INVALID_HANDLE_VALUE);
  const Disk& disk = call->data->disk;
  const DiskPath directory =
      disk.Locate(cut == whole.npos ? std::u16string_view(u".") : whole.substr(0, cut + 1));
  if (directory.error != ERROR_SUCCESS || !directory.isDirectory)
    return Refuse(directory.exists ? ERROR_DIRECTORY : ERROR_PATH_NOT_FOUND, INVALID_HANDLE_VALUE);
  const auto search = std::make_shared<Search>(List(disk, directory, name));
  if (!search->Take(*found)) return Refuse(ERROR_FILE_NOT_FOUND, INVALID_HANDLE_VALUE);
  return call->handles.Add(search);
}

BOOL WINAPI FindNextFileW(HANDLE search, LPWIN32_FIND_DATAW found) {
  const Call call("FindNextFileW");
  if (call.Fails()) return FALSE;
  const auto object = call->handles.Find<Search>(search);
  if (!object) return Refuse(ERROR_INVALID_HANDLE, FALSE);
  return object->Take(*found) ? TRUE : Refuse(ERROR_NO_MORE_FILES, FALSE);
}

BOOL WINAPI FindClose(HANDLE search) {
  const Call call("FindClose");
  if (call.Fails()) return FALSE;
  if (!call->handles.Find<Search>(search)) return Refuse(ERROR_INVALID_HANDLE, FALSE);
  call->handles.Close(search);
  return TRUE;
}
