// Files: how they are opened, shared, read and written.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "test_window.h"

namespace {

using Text = std::basic_string<WCHAR>;

constexpr DWORD kReadWrite = GENERIC_READ | GENERIC_WRITE;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE;

class File {
 public:
  explicit File(HANDLE handle) : handle_(handle) {}
  ~File() {
    if (*this) CloseHandle(handle_);
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
  // 0, or the error.
  [[nodiscard]] DWORD Write(const std::string& bytes) const {
    DWORD written = 0;
    const BOOL done = WriteFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    EXPECT_EQ(written, done ? bytes.size() : 0);
    return done ? 0 : GetLastError();
  }
  [[nodiscard]] std::string Read(DWORD most = 100) const {
    std::string bytes(most, '\0');
    DWORD count = 0;
    if (!ReadFile(handle_, bytes.data(), most, &count, nullptr)) return std::to_string(GetLastError());
    bytes.resize(count);
    return bytes;
  }
  [[nodiscard]] LONGLONG SeekFromEnd(LONGLONG distance) const {
    LARGE_INTEGER move = {};
    LARGE_INTEGER reached = {};
    move.QuadPart = distance;
    return SetFilePointerEx(handle_, move, &reached, FILE_END) ? reached.QuadPart : -1;
  }
  [[nodiscard]] LONGLONG Size() const {
    LARGE_INTEGER size = {};
    return GetFileSizeEx(handle_, &size) ? size.QuadPart : -1;
  }

 private:
  HANDLE handle_;
};

// The error of a call, 0 when it works.
DWORD ErrorOf(BOOL result) {
  return result ? 0 : GetLastError();
}

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
    const File file(Open(name, access, disposition, share));
    return file ? 0 : GetLastError();
  }
  void Make(const Text& name, const std::string& content) const {
    const File file(Open(name, GENERIC_WRITE, CREATE_ALWAYS));
    ASSERT_TRUE(file && file.Write(content) == 0);
  }
  [[nodiscard]] std::string Content(const Text& name) const {
    const File file(Open(name, GENERIC_READ, OPEN_EXISTING, kShareAll));
    return file ? file.Read() : "cannot be opened";
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
    EXPECT_EQ(Delete(TEXT("b.txt")), DWORD{ERROR_FILE_NOT_FOUND});
  }
}

TEST_F(Files, PathsThatLeadNowhere) {
  ASSERT_TRUE(CreateDirectoryW(PathOf(TEXT("inner\\")).c_str(), nullptr));
  EXPECT_EQ(ErrorOf(CreateDirectoryW(PathOf(TEXT("INNER")).c_str(), nullptr)), DWORD{ERROR_ALREADY_EXISTS});
  EXPECT_EQ(ErrorOf(CreateDirectoryW(PathOf(TEXT("no\\inner")).c_str(), nullptr)),
            DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_NE(GetFileAttributesW(PathOf(TEXT("inner")).c_str()) & FILE_ATTRIBUTE_DIRECTORY, 0U);
  EXPECT_EQ(GetFileAttributesW(PathOf(TEXT("a.txt")).c_str()), INVALID_FILE_ATTRIBUTES);
  for (const DWORD disposition : {DWORD{OPEN_EXISTING}, DWORD{CREATE_ALWAYS}})
    EXPECT_EQ(ErrorOfOpening(TEXT("no\\file"), GENERIC_READ, disposition), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(CreateFileW(TEXT(""), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr),
            INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(ErrorOfOpening(TEXT("a<b"), GENERIC_WRITE, CREATE_ALWAYS), DWORD{ERROR_INVALID_NAME});
  EXPECT_EQ(ErrorOfOpening(TEXT("inner"), GENERIC_READ, OPEN_EXISTING, kShareAll),
            DWORD{ERROR_ACCESS_DENIED});
  // "." and "..", slashes, and dots and blanks at the end of a name.
  Make(TEXT("inner\\..\\.\\a.txt"), "x");
  EXPECT_EQ(ErrorOfOpening(TEXT("inner/../A.TXT. "), GENERIC_READ, OPEN_EXISTING), 0U);
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
      {kReadWrite, FILE_SHARE_READ, kReadWrite, kShareAll, false},
      {kReadWrite, kShareAll, kReadWrite, kShareAll, true},
  };
  Make(TEXT("a.txt"), "x");
  for (const auto& row : rows) {
    const File first(Open(TEXT("a.txt"), row.firstAccess, OPEN_EXISTING, row.firstShare));
    ASSERT_TRUE(first);
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
  EXPECT_EQ(writer.SeekFromEnd(0), 5);  // writing at the end keeps what was there
  EXPECT_EQ(writer.Write(" second"), 0U);
  EXPECT_EQ(writer.Write(" third"), 0U);
  EXPECT_EQ(reader.Read(5), "first");
  EXPECT_EQ(reader.Read(), " second third");
  EXPECT_EQ(reader.Read(), "");  // the end of a file is no error
  EXPECT_EQ(reader.SeekFromEnd(-5), 13);
  EXPECT_EQ(reader.Read(), "third");
  EXPECT_EQ(reader.SeekFromEnd(-19), -1);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_NEGATIVE_SEEK});
}

TEST_F(Files, CopyingAndRenamingReplace) {
  EXPECT_EQ(Copy(TEXT("a.txt"), TEXT("b.txt")), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(Move(TEXT("a.txt"), TEXT("b.txt")), DWORD{ERROR_FILE_NOT_FOUND});
  Make(TEXT("a.txt"), "new");
  Make(TEXT("b.txt"), "older and longer");
  EXPECT_EQ(Copy(TEXT("a.txt"), TEXT("b.txt")), 0U);
  EXPECT_EQ(Content(TEXT("b.txt")), "new");
  {
    const File reader(Open(TEXT("b.txt"), GENERIC_READ, OPEN_EXISTING, FILE_SHARE_READ));
    EXPECT_EQ(Copy(TEXT("a.txt"), TEXT("b.txt")), DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_EQ(Move(TEXT("b.txt"), TEXT("c.txt")), DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_EQ(Move(TEXT("a.txt"), TEXT("b.txt")), DWORD{ERROR_ACCESS_DENIED});
    const File writer(Open(TEXT("a.txt"), GENERIC_WRITE, OPEN_EXISTING, 0));
    EXPECT_EQ(Copy(TEXT("a.txt"), TEXT("c.txt")), DWORD{ERROR_SHARING_VIOLATION});
  }
  Make(TEXT("a.txt"), "newest");
  EXPECT_EQ(Move(TEXT("a.txt"), TEXT("B.txt")), 0U);
  EXPECT_EQ(Content(TEXT("b.txt")), "newest");
  EXPECT_EQ(ErrorOfOpening(TEXT("a.txt"), GENERIC_READ, OPEN_EXISTING), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST_F(Files, AreFoundByTheirName) {
  WIN32_FIND_DATAW found = {};
  EXPECT_EQ(FindFirstFileW(PathOf(TEXT("a.txt")).c_str(), &found), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
  Make(TEXT("a.txt"), "");
  const HANDLE search = FindFirstFileW(PathOf(TEXT("A.txt")).c_str(), &found);
  EXPECT_NE(search, INVALID_HANDLE_VALUE);
  EXPECT_TRUE(FindClose(search));
}

}  // namespace
