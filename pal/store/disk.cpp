#include "pal/store/disk.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "pal/machine/die.h"
#include "pal/machine/machine_mutex.h"
#include "pal/store/disk_path.h"
#include "pal/text/unicode.h"

namespace pal {
namespace {

namespace fs = std::filesystem;

constexpr auto kWritable = fs::perms::owner_write;

constexpr std::u16string_view kDirectoriesAtStart[] = {Disk::kProgramDirectory, Disk::kCommonDocuments,
                                                       u"C:\\Windows\\Temp"};

// In memory where the host has that: on some disks removing a directory takes milliseconds.
fs::path MakeTemporaryDirectory() {
  const fs::path memory = "/dev/shm";
  const bool inMemory = access(memory.c_str(), W_OK) == 0;
  std::string name =
      ((inMemory ? memory : fs::temp_directory_path()) / ("pal-disk-" + std::string(6, 'X'))).string();
  if (!mkdtemp(name.data())) Die("cannot make a directory for the disk");
  return name;
}

// The entry of the directory with that name in any case; the name itself when there is none.
fs::path FindEntry(const fs::path& directory, const std::u16string& name) {
  fs::path exact = directory / ToUtf8(name);
  std::error_code ignored;
  if (fs::exists(exact, ignored)) return exact;
  for (const fs::directory_entry& entry : fs::directory_iterator(directory, ignored))
    if (EqualFolded(DecodeUtf8(entry.path().filename().string()).text, name)) return entry.path();
  return exact;
}

// What two openings of one file do and allow.
bool Agree(const Opening& a, const Opening& b) {
  const auto allows = [](const Opening& one, const Opening& other) {
    return (!other.reads || (one.share & FILE_SHARE_READ) != 0) &&
           (!other.writes || (one.share & FILE_SHARE_WRITE) != 0);
  };
  const bool bothUse = (a.reads || a.writes) && (b.reads || b.writes);  // others only look at attributes
  return !bothUse || (allows(a, b) && allows(b, a));
}

int HostFlags(DWORD access) {
  const bool reads = (access & GENERIC_READ) != 0;
  const bool writes = (access & GENERIC_WRITE) != 0;
  return O_CLOEXEC | (writes ? (reads ? O_RDWR : O_WRONLY) : O_RDONLY);
}

}  // namespace

DWORD DiskPath::ErrorIfMissing() const {
  if (error != ERROR_SUCCESS) return error;
  return exists ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
}

Opening::~Opening() {
  if (descriptor >= 0) close(descriptor);
}

Disk::~Disk() {
  std::error_code ignored;
  if (!root_.empty()) fs::remove_all(root_, ignored);
}

const fs::path& Disk::Root() const {
  if (!root_.empty()) return root_;
  root_ = MakeTemporaryDirectory();
  for (const std::u16string_view directory : kDirectoriesAtStart) MakeDirectories(directory);
  return root_;
}

DiskPath Disk::Locate(std::u16string_view path) const {
  const PathParts parts = TakePathApart(path, Disk::kProgramDirectory);
  DiskPath located;
  located.error = parts.error;
  if (parts.error != ERROR_SUCCESS) return located;
  located.windows = JoinPath(parts);
  located.host = Root() / ToUtf8({&parts.drive, 1});
  for (const std::u16string& name : parts.names) {
    if (!fs::is_directory(located.host)) located.error = ERROR_PATH_NOT_FOUND;
    located.host = FindEntry(located.host, name);
  }
  std::error_code ignored;
  const fs::file_status status = fs::status(located.host, ignored);
  located.exists = fs::exists(status);
  located.isDirectory = fs::is_directory(status);
  located.isReadOnly = located.IsFile() && (status.permissions() & kWritable) == fs::perms::none;
  return located;
}

std::shared_ptr<Opening> Disk::Open(const fs::path& host, DWORD access, DWORD share) {
  auto opening = std::make_shared<Opening>();
  opening->descriptor = open(host.c_str(), HostFlags(access));
  struct stat status = {};
  if (opening->descriptor < 0 || fstat(opening->descriptor, &status) != 0)
    Die("the host does not open " + host.string());
  opening->device = status.st_dev;
  opening->file = status.st_ino;
  opening->reads = (access & GENERIC_READ) != 0;
  opening->writes = (access & GENERIC_WRITE) != 0;
  opening->share = share;
  std::erase_if(openings_, [](const std::weak_ptr<Opening>& closed) { return closed.expired(); });
  for (const std::weak_ptr<Opening>& weak : openings_) {
    const std::shared_ptr<Opening> earlier = weak.lock();
    const bool same = earlier->device == opening->device && earlier->file == opening->file;
    if (same && !Agree(*earlier, *opening)) return nullptr;
  }
  openings_.push_back(opening);
  return opening;
}

bool Disk::MayDelete(const fs::path& host) const {
  struct stat status = {};
  if (stat(host.c_str(), &status) != 0) return true;
  return std::ranges::none_of(openings_, [&](const std::weak_ptr<Opening>& weak) {
    const std::shared_ptr<Opening> opening = weak.lock();
    return opening && opening->device == status.st_dev && opening->file == status.st_ino;
  });
}

void Disk::Write(std::u16string_view path, std::string_view content) {
  const MachineLock lock(mutex_);
  const PathParts parts = TakePathApart(path, Disk::kProgramDirectory);
  PathParts directory = parts;
  if (!directory.names.empty()) directory.names.pop_back();
  MakeDirectories(JoinPath(directory));
  const DiskPath located = Locate(path);
  if (located.isReadOnly) SetHostReadOnly(located.host, false);
  std::ofstream file(located.host, std::ios::binary | std::ios::trunc);
  file << content;
  if (!file.flush()) Die("the disk refuses to write " + ToUtf8(path));
  if (located.isReadOnly) SetHostReadOnly(located.host, true);
}

std::optional<std::string> Disk::Read(std::u16string_view path) const {
  const MachineLock lock(mutex_);
  const DiskPath located = Locate(path);
  if (!located.IsFile()) return std::nullopt;
  std::ifstream file(located.host, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

void Disk::Remove(std::u16string_view path) {
  const MachineLock lock(mutex_);
  fs::remove_all(HostPath(path));
}

void Disk::SetReadOnly(std::u16string_view path, bool readOnly) {
  const MachineLock lock(mutex_);
  const DiskPath located = Locate(path);
  if (!located.IsFile()) Die("SetReadOnly of a file that is not there: " + ToUtf8(path));
  SetHostReadOnly(located.host, readOnly);
}

void Disk::Hold(std::u16string_view path, bool held) {
  const MachineLock lock(mutex_);
  const DiskPath located = Locate(path);
  std::erase_if(holders_, [&](const Holder& holder) { return EqualFolded(holder.path, located.windows); });
  if (!held) return;
  if (!located.IsFile()) Die("another program can only hold a file that is there: " + ToUtf8(path));
  auto opening = Open(located.host, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ);
  if (!opening) Die("the program has the file open that another one shall hold: " + ToUtf8(path));
  holders_.push_back({located.windows, std::move(opening)});
}

fs::path Disk::HostPath(std::u16string_view path) const {
  const MachineLock lock(mutex_);
  const DiskPath located = Locate(path);
  if (located.host.empty()) Die("no path of the disk: " + ToUtf8(path));
  return located.host;
}

void Disk::MakeDirectories(std::u16string_view path) const {
  fs::create_directories(HostPath(path));
}

void SetHostReadOnly(const fs::path& host, bool readOnly) {
  constexpr auto kAllWrite = kWritable | fs::perms::group_write | fs::perms::others_write;
  if (readOnly)
    fs::permissions(host, kAllWrite, fs::perm_options::remove);
  else
    fs::permissions(host, kWritable, fs::perm_options::add);
}

}  // namespace pal
