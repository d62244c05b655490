// Files and directories of the disk.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "pal/machine/state.h"
#include "pal/store/disk_file.h"
#include "pal/text/unicode.h"

using namespace pal;

namespace {

namespace fs = std::filesystem;

constexpr std::u16string_view kTemporaryDirectory = u"C:\\Windows\\Temp\\";

DiskPath Locate(const Call& call, LPCWSTR name) {
  return call->disk.Locate(OrEmpty(name));
}

// The file behind the handle; null, and the last error set, when there is none.
std::shared_ptr<DiskFile> FindFile(const Call& call, HANDLE handle) {
  auto file = call->handles.Find<DiskFile>(handle);
  if (!file || !file->HostFile()) return Refuse(ERROR_INVALID_HANDLE, std::shared_ptr<DiskFile>());
  return file;
}

// Success for 0; otherwise failure with that last error.
BOOL Finish(DWORD error) {
  return error == ERROR_SUCCESS ? TRUE : Refuse(error, FALSE);
}

// Why a file cannot be deleted or renamed.
DWORD ErrorOfRemoval(const Call& call, const DiskPath& path) {
  if (const DWORD error = path.ErrorIfMissing()) return error;
  return path.isDirectory || call->disk.MayDelete(path.host) ? ERROR_SUCCESS : ERROR_SHARING_VIOLATION;
}

DWORD Copy(const Call& call, const DiskPath& from, const DiskPath& to) {
  if (const DWORD error = from.ErrorIfMissing()) return error;
  if (to.error != ERROR_SUCCESS) return to.error;
  if (from.isDirectory || to.isDirectory || to.isReadOnly) return ERROR_ACCESS_DENIED;
  if (to.exists && fs::equivalent(from.host, to.host)) return ERROR_SHARING_VIOLATION;
  Disk& disk = call->disk;
  if (!disk.Open(from.host, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE)) return ERROR_SHARING_VIOLATION;
  if (to.exists && !disk.Open(to.host, GENERIC_WRITE, FILE_SHARE_READ)) return ERROR_SHARING_VIOLATION;
  std::error_code failure;
  fs::copy_file(from.host, to.host, fs::copy_options::overwrite_existing, failure);
  if (failure) return failure == std::errc::no_space_on_device ? ERROR_DISK_FULL : ERROR_INVALID_NAME;
  SetHostReadOnly(to.host, from.isReadOnly);
  return ERROR_SUCCESS;
}

// Takes the place of a file of that name.
DWORD Move(const Call& call, const DiskPath& from, const DiskPath& to) {
  if (const DWORD error = ErrorOfRemoval(call, from)) return error;
  if (to.error != ERROR_SUCCESS) return to.error;
  const bool isItself = to.exists && fs::equivalent(from.host, to.host);
  if (to.exists && !isItself) {
    if (to.isDirectory || to.isReadOnly || from.isDirectory || !call->disk.MayDelete(to.host))
      return ERROR_ACCESS_DENIED;
  }
  // The new name is spelled as it was asked for, also when it replaces one that differs in case.
  const fs::path spelled = to.host.parent_path() / ToUtf8(to.windows.substr(to.windows.rfind(u'\\') + 1));
  if (to.exists && !isItself) fs::remove(to.host);
  std::error_code failure;
  fs::rename(from.host, spelled, failure);
  return failure ? ERROR_INVALID_NAME : ERROR_SUCCESS;
}

}  // namespace

BOOL WINAPI GetFileSizeEx(HANDLE file, PLARGE_INTEGER size) {
  const Call call("GetFileSizeEx");
  if (call.Fails()) return FALSE;
  const auto found = FindFile(call, file);
  if (!found) return FALSE;
  struct stat status = {};
  if (fstat(found->HostFile()->descriptor, &status) != 0) Die("a file without a size");
  size->QuadPart = status.st_size;
  return TRUE;
}

BOOL WINAPI SetFilePointerEx(HANDLE file, LARGE_INTEGER distance, PLARGE_INTEGER position, DWORD method) {
  const Call call("SetFilePointerEx");
  if (call.Fails()) return FALSE;
  const auto found = FindFile(call, file);
  if (!found) return FALSE;
  if (method != FILE_END || distance.QuadPart != 0 || position)
    Die("SetFilePointerEx to anywhere but the end");
  if (lseek(found->HostFile()->descriptor, 0, SEEK_END) < 0) Die("a file without an end");
  return TRUE;
}

BOOL WINAPI CopyFileW(LPCWSTR from, LPCWSTR to, BOOL failIfExists) {
  const Call call("CopyFileW");
  if (failIfExists) Die("CopyFileW that must not replace a file");
  if (call.Fails()) return FALSE;
  return Finish(Copy(call, Locate(call, from), Locate(call, to)));
}

BOOL WINAPI MoveFileExW(LPCWSTR from, LPCWSTR to, DWORD flags) {
  const Call call("MoveFileExW");
  if (!to || flags != MOVEFILE_REPLACE_EXISTING) Die("MoveFileExW: unknown flags");
  if (call.Fails()) return FALSE;
  return Finish(Move(call, Locate(call, from), Locate(call, to)));
}

BOOL WINAPI DeleteFileW(LPCWSTR name) {
  const Call call("DeleteFileW");
  if (call.Fails()) return FALSE;
  const DiskPath path = Locate(call, name);
  if (const DWORD error = ErrorOfRemoval(call, path)) return Finish(error);
  if (path.isDirectory || path.isReadOnly) return Finish(ERROR_ACCESS_DENIED);
  fs::remove(path.host);
  return TRUE;
}

DWORD WINAPI GetCurrentDirectoryW(DWORD size, LPWSTR directory) {
  const Call call("GetCurrentDirectoryW");
  const std::u16string& current = call->disk.currentDirectory;
  if (call.Fails()) return 0;
  if (size <= current.size()) Die("GetCurrentDirectoryW without room");
  *std::ranges::copy(current, directory).out = 0;
  return static_cast<DWORD>(current.size());
}

BOOL WINAPI SetCurrentDirectoryW(LPCWSTR directory) {
  const Call call("SetCurrentDirectoryW");
  if (call.Fails()) return FALSE;
  call->disk.currentDirectory = directory;
  return TRUE;
}

BOOL WINAPI CreateDirectoryW(LPCWSTR name, LPSECURITY_ATTRIBUTES security) {
  const Call call("CreateDirectoryW");
  if (security) Die("CreateDirectoryW with security attributes");
  if (call.Fails()) return FALSE;
  const DiskPath path = Locate(call, name);
  if (path.error != ERROR_SUCCESS) return Finish(path.error);
  if (path.exists) return Finish(ERROR_ALREADY_EXISTS);
  std::error_code failure;
  fs::create_directory(path.host, failure);
  return Finish(failure ? ERROR_INVALID_NAME : ERROR_SUCCESS);
}

DWORD WINAPI GetFileAttributesW(LPCWSTR name) {
  const Call call("GetFileAttributesW");
  if (call.Fails()) return INVALID_FILE_ATTRIBUTES;
  const DiskPath path = Locate(call, name);
  if (const DWORD error = path.ErrorIfMissing()) return Refuse(error, INVALID_FILE_ATTRIBUTES);
  return path.isDirectory ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
}

DWORD WINAPI GetTempPathW(DWORD length, LPWSTR buffer) {
  const Call call("GetTempPathW");
  if (call.Fails()) return 0;
  const auto needed = static_cast<DWORD>(kTemporaryDirectory.size());
  if (length <= needed) return needed + 1;
  *std::copy(kTemporaryDirectory.begin(), kTemporaryDirectory.end(), buffer) = 0;
  return needed;
}
