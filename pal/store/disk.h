// The machine's disk: Windows paths below a temporary directory of the host. "C:\a\b" is <root>/C/a/b, names
// compared without regard to case.
#pragma once

#include <windows.h>

#include <sys/types.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pal {

class MachineMutex;

// Where a Windows path leads to. Names are found without regard to case; a new file gets the spelling asked
// for.
struct DiskPath {
  DWORD error = ERROR_SUCCESS;  // why it leads nowhere: it is no path, or a directory on the way is missing
  std::u16string windows;       // in full: drive, single backslashes, no "." and ".."
  std::filesystem::path host;
  bool exists = false;
  bool isDirectory = false;
  bool isReadOnly = false;

  [[nodiscard]] bool IsFile() const { return exists && !isDirectory; }
  // The error of a call that needs the file or directory: the path's own, or that nothing is there.
  [[nodiscard]] DWORD ErrorIfMissing() const;
};

// One opening of a file, by the program or by another one. The file is closed with it.
struct Opening {
  ~Opening();
  Opening() = default;
  Opening(const Opening&) = delete;
  Opening& operator=(const Opening&) = delete;

  int descriptor = -1;
  bool reads = false;
  bool writes = false;
  DWORD share = 0;  // FILE_SHARE_...: what others may do meanwhile
  dev_t device = 0;
  ino_t file = 0;
};

class Disk {
 public:
  explicit Disk(MachineMutex& mutex) : mutex_(mutex) {}
  ~Disk();
  Disk(const Disk&) = delete;
  Disk& operator=(const Disk&) = delete;

  // The directories of the program and of the common documents exist from the start.
  static constexpr std::u16string_view kProgramDirectory = u"C:\\Program Files\\Veltra\\";
  static constexpr std::u16string_view kProgramFile = u"C:\\Program Files\\Veltra\\veltratool.exe";
  static constexpr std::u16string_view kCommonDocuments = u"C:\\Users\\Public\\Documents";

  // The box for files goes where its file is, as Windows' does. Nothing is looked up there.
  std::u16string currentDirectory{kProgramDirectory};

  // Directories on the way are made.
  void Write(std::u16string_view path, std::string_view content);
  [[nodiscard]] std::optional<std::string> Read(std::u16string_view path) const;
  void Remove(std::u16string_view path);
  void SetReadOnly(std::u16string_view path, bool readOnly);
  // Another program has the file open for reading and writing and lets others read it.
  void Hold(std::u16string_view path, bool held);
  // The path on the host, whether something is there or not; dies when it is no path of the disk.
  [[nodiscard]] std::filesystem::path HostPath(std::u16string_view path) const;

  // ---- for the calls of Windows ----
  // A relative path starts in the program's directory.
  [[nodiscard]] DiskPath Locate(std::u16string_view path) const;

  // Opens a file that exists; `access` and `share` as for CreateFileW. Null when the share modes of this
  // opening and of those before it do not agree.
  std::shared_ptr<Opening> Open(const std::filesystem::path& host, DWORD access, DWORD share);
  // Whether no opening forbids that the file is deleted, renamed or replaced.
  [[nodiscard]] bool MayDelete(const std::filesystem::path& host) const;

  void MakeDirectories(std::u16string_view path) const;

 private:
  struct Holder {
    std::u16string path;
    std::shared_ptr<Opening> opening;
  };
  // Made by the first call that needs it.
  const std::filesystem::path& Root() const;

  MachineMutex& mutex_;
  mutable std::filesystem::path root_;
  std::vector<std::weak_ptr<Opening>> openings_;
  std::vector<Holder> holders_;
};

void SetHostReadOnly(const std::filesystem::path& host, bool readOnly);

}  // namespace pal
