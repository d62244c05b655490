// Looking whether a file is there.
#include "pal/machine/state.h"

using namespace pal;

namespace {

// A search that has found its only file.
class Search : public Object {
 public:
  [[nodiscard]] std::string_view Kind() const override { return "search"; }
};

}  // namespace

// The record tells the file's size and no more.
HANDLE WINAPI FindFirstFileW(LPCWSTR name, LPWIN32_FIND_DATAW found) {
  const Call call("FindFirstFileW");
  if (call.Fails()) return INVALID_HANDLE_VALUE;
  const std::u16string_view whole = OrEmpty(name);
  if (whole.find_first_of(u"*?") != whole.npos) Die("FindFirstFileW with a pattern");
  const DiskPath path = call->disk.Locate(whole);
  if (const DWORD error = path.ErrorIfMissing()) return Refuse(error, INVALID_HANDLE_VALUE);
  *found = {};
  if (path.IsFile()) found->nFileSizeLow = static_cast<DWORD>(std::filesystem::file_size(path.host));
  return call->handles.Add(std::make_shared<Search>());
}

BOOL WINAPI FindClose(HANDLE search) {
  const Call call("FindClose");
  if (call.Fails()) return FALSE;
  if (!call->handles.Find<Search>(search)) return Refuse(ERROR_INVALID_HANDLE, FALSE);
  call->handles.Close(search);
  return TRUE;
}
