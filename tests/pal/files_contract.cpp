// Files: how they are opened, shared, read and written.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "test_window.h"

namespace {

using Text = std::basic_string<WCHAR>;

constexpr DWORD kReadWrite = GENERIC_READ | GENERIC_WRITE;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE;

// The error of a call, 0 when it works.
DWORD ErrorOf(BOOL result) {
  return result ? 0 : GetLastError();
}

class File {
 public:
  explicit File(HANDLE handle) : handle_(handle) {}
  ~File() {
    if (*this) CloseHandle(handle_);
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
  [[nodiscard]] DWORD Write(const std::string& bytes) const {
    DWORD written = 0;
    const BOOL done = WriteFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    EXPECT_EQ(written, done ? bytes.size() : 0);
    return ErrorOf(done);
  }
  [[nodiscard]] std::string Read(DWORD most = 100) const {
    std::string bytes(most, '\0');
    DWORD count = 0;
    if (!ReadFile(handle_, bytes.data(), most, &count, nullptr)) return std::to_string(GetLastError());
    return bytes.substr(0, count);
  }
  [[nodiscard]] LONGLONG Size() const {
    LARGE_INTEGER size = {};
    return GetFileSizeEx(handle_, &size) ? size.QuadPart : -1;
  }
  [[nodiscard]] BOOL GoToTheEnd() const { return SetFilePointerEx(handle_, {}, nullptr, FILE_END); }

 private:
  HANDLE handle_;
};

class Files : public testing::Test {
 protected:
  void SetUp() override {
    WCHAR path[MAX_PATH] = {};
    directory_.assign(path, GetTempPathW(MAX_PATH, path)).append(contract::UniqueName()).append(TEXT("\\"));
    ASSERT_TRUE(CreateDirectoryW(directory_.c_str(), nullptr));
  }
  void TearDown() override {
    for (const WCHAR* name : {TEXT("a.txt"), TEXT("b.txt")}) DeleteFileW(PathOf(name).c_str());
  }

  [[nodiscard]] Text PathOf(const Text& name) const { return directory_ + name; }
  [[nodiscard]] HANDLE Open(const Text& name, DWORD access, DWORD disposition, DWORD share = 0) const {
    return CreateFileW(PathOf(name).c_str(), access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
  }
  // The file is closed again.
  [[nodiscard]] DWORD ErrorOfOpening(const Text& name, DWORD access, DWORD disposition,
                                     DWORD share = 0) const {
    return ErrorOf(static_cast<bool>(File(Open(name, access, disposition, share))));
  }
  void Make(const Text& name, const std::string& content) const {
    EXPECT_EQ(File(Open(name, GENERIC_WRITE, CREATE_ALWAYS)).Write(content), 0U);
  }
  [[nodiscard]] DWORD Copy(const Text& from, const Text& to) const {
    return ErrorOf(CopyFileW(PathOf(from).c_str(), PathOf(to).c_str(), FALSE));
  }
  [[nodiscard]] DWORD Move(const Text& from, const Text& to) const {
    return ErrorOf(MoveFileExW(PathOf(from).c_str(), PathOf(to).c_str(), MOVEFILE_REPLACE_EXISTING));
  }
  [[nodiscard]] DWORD Delete(const Text& name) const { return ErrorOf(DeleteFileW(PathOf(name).c_str())); }

 private:
  Text directory_;
};

TEST_F(Files, DispositionsOfAFileThatIsThereAndOfOneThatIsNot) {
  const struct {
    DWORD disposition;
    DWORD errorWhenThere;  // of GetLastError after a call that works
    LONGLONG size;
    DWORD errorWhenMissing;
  } rows[] = {{CREATE_ALWAYS, ERROR_ALREADY_EXISTS, 0, 0},
              {OPEN_EXISTING, 0, 7, ERROR_FILE_NOT_FOUND},
              {OPEN_ALWAYS, ERROR_ALREADY_EXISTS, 7, 0}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.disposition);
    Make(TEXT("a.txt"), "content");
    {
      const File there(Open(TEXT("A.TXT"), kReadWrite, row.disposition));
      EXPECT_EQ(GetLastError(), row.errorWhenThere);
      EXPECT_EQ(there.Size(), row.size);
      EXPECT_EQ(Delete(TEXT("a.txt")), DWORD{ERROR_SHARING_VIOLATION});
    }
    EXPECT_EQ(ErrorOfOpening(TEXT("b.txt"), kReadWrite, row.disposition), row.errorWhenMissing);
    EXPECT_EQ(Delete(TEXT("b.txt")), row.errorWhenMissing);
  }
}

TEST_F(Files, PathsThatLeadNowhere) {
  ASSERT_TRUE(CreateDirectoryW(PathOf(TEXT("inner\\")).c_str(), nullptr));
  EXPECT_FALSE(CreateDirectoryW(PathOf(TEXT("INNER")).c_str(), nullptr));
  EXPECT_FALSE(CreateDirectoryW(PathOf(TEXT("no\\inner")).c_str(), nullptr));
  EXPECT_EQ(GetFileAttributesW(PathOf(TEXT("a.txt")).c_str()), INVALID_FILE_ATTRIBUTES);
  const std::pair<const WCHAR*, int> rows[] = {{TEXT("no\\file"), ERROR_PATH_NOT_FOUND},
                                               {TEXT("a<b"), ERROR_INVALID_NAME},
                                               {TEXT("inner"), ERROR_ACCESS_DENIED},
                                               {TEXT("inner\\..\\.\\a.txt"), 0},
                                               {TEXT("inner/../A.TXT. "), 0}};
  for (const auto& [path, error] : rows)
    EXPECT_EQ(ErrorOfOpening(path, GENERIC_READ, OPEN_ALWAYS), static_cast<DWORD>(error)) << error;
}

TEST_F(Files, OpeningsOfOneFileMustAgree) {
  const struct {
    DWORD firstAccess;
    DWORD firstShare;
    DWORD secondAccess;
    DWORD secondShare;
    bool agrees;
  } rows[] = {
      {GENERIC_READ, 0, GENERIC_READ, kShareAll, false},
      {GENERIC_READ, FILE_SHARE_READ, GENERIC_READ, FILE_SHARE_READ, true},
      {GENERIC_READ, FILE_SHARE_READ, GENERIC_READ, FILE_SHARE_WRITE, false},
      {GENERIC_READ, FILE_SHARE_READ, GENERIC_WRITE, kShareAll, false},
      {kReadWrite, FILE_SHARE_READ, GENERIC_READ, FILE_SHARE_READ, false},
      {kReadWrite, FILE_SHARE_READ, GENERIC_READ, kShareAll, true},
      {kReadWrite, kShareAll, kReadWrite, kShareAll, true},
  };
  Make(TEXT("a.txt"), "x");
  for (const auto& row : rows) {
    const File first(Open(TEXT("a.txt"), row.firstAccess, OPEN_EXISTING, row.firstShare));
    EXPECT_EQ(ErrorOfOpening(TEXT("a.txt"), row.secondAccess, OPEN_EXISTING, row.secondShare),
              row.agrees ? DWORD{0} : DWORD{ERROR_SHARING_VIOLATION})
        << "row " << (&row - rows);
  }
  // A closed handle stands in nobody's way, and what was refused has emptied nothing.
  const File writer(Open(TEXT("a.txt"), kReadWrite, OPEN_EXISTING, FILE_SHARE_READ));
  EXPECT_EQ(ErrorOfOpening(TEXT("a.txt"), GENERIC_WRITE, CREATE_ALWAYS, kShareAll),
            DWORD{ERROR_SHARING_VIOLATION});
  EXPECT_EQ(writer.Size(), 1);
}

TEST_F(Files, AHandleReadsAndWritesAsItWasOpened) {
  Make(TEXT("a.txt"), "first");
  const File reader(Open(TEXT("a.txt"), GENERIC_READ, OPEN_EXISTING, kShareAll));
  const File writer(Open(TEXT("a.txt"), GENERIC_WRITE, OPEN_EXISTING, kShareAll));
  EXPECT_EQ(reader.Write("x"), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(writer.Read(), std::to_string(ERROR_ACCESS_DENIED));
  EXPECT_TRUE(writer.GoToTheEnd());  // writing there keeps what was there
  EXPECT_EQ(writer.Write(" second"), 0U);
  EXPECT_EQ(reader.Read(5), "first");
  EXPECT_EQ(reader.Read(), " second");
  EXPECT_EQ(reader.Read(), "");  // the end of a file is no error
}

TEST_F(Files, CopyingAndRenamingReplace) {
  EXPECT_EQ(Copy(TEXT("a.txt"), TEXT("b.txt")), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(Move(TEXT("a.txt"), TEXT("b.txt")), DWORD{ERROR_FILE_NOT_FOUND});
  Make(TEXT("a.txt"), "new");
  Make(TEXT("b.txt"), "older and longer");
  EXPECT_EQ(Copy(TEXT("a.txt"), TEXT("b.txt")), 0U);
  {
    const File reader(Open(TEXT("b.txt"), GENERIC_READ, OPEN_EXISTING, FILE_SHARE_READ));
    EXPECT_EQ(reader.Read(), "new");
    EXPECT_EQ(Copy(TEXT("a.txt"), TEXT("b.txt")), DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_EQ(Move(TEXT("b.txt"), TEXT("c.txt")), DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_EQ(Move(TEXT("a.txt"), TEXT("b.txt")), DWORD{ERROR_ACCESS_DENIED});
    const File writer(Open(TEXT("a.txt"), GENERIC_WRITE, OPEN_EXISTING, 0));
    EXPECT_EQ(Copy(TEXT("a.txt"), TEXT("c.txt")), DWORD{ERROR_SHARING_VIOLATION});
  }
  Make(TEXT("a.txt"), "newest");
  EXPECT_EQ(Move(TEXT("a.txt"), TEXT("B.txt")), 0U);
  EXPECT_EQ(File(Open(TEXT("b.txt"), GENERIC_READ, OPEN_EXISTING)).Read(), "newest");
  EXPECT_EQ(ErrorOfOpening(TEXT("a.txt"), GENERIC_READ, OPEN_EXISTING), DWORD{ERROR_FILE_NOT_FOUND});
}

}  // namespace
