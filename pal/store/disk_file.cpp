#include "pal/store/disk_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "pal/machine/state.h"

namespace pal {
namespace {

constexpr DWORD kKnownAccess = GENERIC_READ | GENERIC_WRITE;
constexpr DWORD kKnownShare = FILE_SHARE_READ | FILE_SHARE_WRITE;
constexpr DWORD kKnownFlags = FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN;

struct Request {
  DWORD access;
  DWORD share;
  DWORD disposition;
  DWORD flags;

  [[nodiscard]] bool Empties() const { return disposition == CREATE_ALWAYS; }
  [[nodiscard]] bool Makes() const { return disposition != OPEN_EXISTING; }
};

void CheckIsKnown(const Request& request) {
  if ((request.access & ~kKnownAccess) != 0) Die("CreateFileW: unknown access to a file");
  if ((request.share & ~kKnownShare) != 0) Die("CreateFileW: unknown share mode");
  if ((request.flags & ~kKnownFlags) != 0) Die("CreateFileW: unknown flags or attributes of a file");
  if (request.disposition < CREATE_ALWAYS || request.disposition > OPEN_ALWAYS)
    Die("CreateFileW: unknown disposition");
}

// Why the file or directory that is there cannot be opened, shares apart.
DWORD ErrorOfExisting(const DiskPath& path, const Request& request) {
  if (path.isDirectory) return ERROR_ACCESS_DENIED;
  const bool writes = request.Empties() || (request.access & GENERIC_WRITE) != 0;
  return path.isReadOnly && writes ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

DWORD ErrorOf(const DiskPath& path, const Request& request) {
  if (path.error != ERROR_SUCCESS) return path.error;
  if (path.exists) return ErrorOfExisting(path, request);
  return request.Makes() ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
}

bool MakeHostFile(const DiskPath& path) {
  const int descriptor = open(path.host.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  return descriptor >= 0 && close(descriptor) == 0;
}

HANDLE Open(State& state, const DiskPath& path, const Request& request) {
  if (!path.exists && !MakeHostFile(path)) return Refuse(ERROR_INVALID_NAME, INVALID_HANDLE_VALUE);
  // To empty a file is to write it, even through a handle that only reads.
  Disk& disk = state.disk;
  if (request.Empties() && !disk.Open(path.host, request.access | GENERIC_WRITE, request.share))
    return Refuse(ERROR_SHARING_VIOLATION, INVALID_HANDLE_VALUE);
  auto opening = disk.Open(path.host, request.access, request.share);
  if (!opening) return Refuse(ERROR_SHARING_VIOLATION, INVALID_HANDLE_VALUE);
  if (request.Empties()) std::filesystem::resize_file(path.host, 0);
  const bool openedAnyway = path.exists && request.Makes();
  state.Emit(FileOpened{path.windows, request.access, request.share, request.disposition, request.flags});
  const HANDLE handle = state.handles.Add(std::make_shared<DiskFile>(std::move(opening), path.windows));
  return Refuse(openedAnyway ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS, handle);
}

DWORD HostError(int error) {
  return error == ENOSPC ? ERROR_DISK_FULL : ERROR_GEN_FAILURE;
}

}  // namespace

DWORD DiskFile::Read(std::span<uint8_t> buffer, OVERLAPPED* overlapped, DWORD& transferred) {
  if (overlapped) Die("ReadFile of a disk file with an OVERLAPPED");
  if (!opening_->reads) return ERROR_ACCESS_DENIED;
  const ssize_t count = read(opening_->descriptor, buffer.data(), buffer.size());
  if (count < 0) return HostError(errno);
  transferred = static_cast<DWORD>(count);
  return ERROR_SUCCESS;
}

DWORD DiskFile::Write(std::span<const uint8_t> bytes, OVERLAPPED* overlapped, DWORD& transferred) {
  if (overlapped) Die("WriteFile to a disk file with an OVERLAPPED");
  if (!opening_->writes) return ERROR_ACCESS_DENIED;
  const ssize_t count = write(opening_->descriptor, bytes.data(), bytes.size());
  if (count < 0) return HostError(errno);
  transferred = static_cast<DWORD>(count);
  const auto* text = reinterpret_cast<const char*>(bytes.data());
  CurrentState().Emit(FileWrite{path_, std::string(text, transferred)});
  return transferred == bytes.size() ? ERROR_SUCCESS : ERROR_DISK_FULL;
}

HANDLE OpenDiskFile(State& state, const WCHAR* name, DWORD access, DWORD shareMode, DWORD disposition,
                    DWORD flagsAndAttributes) {
  const Request request = {access, shareMode, disposition, flagsAndAttributes};
  CheckIsKnown(request);
  const DiskPath path = state.disk.Locate(name);
  if (const DWORD error = ErrorOf(path, request)) return Refuse(error, INVALID_HANDLE_VALUE);
  return Open(state, path, request);
}

}  // namespace pal
