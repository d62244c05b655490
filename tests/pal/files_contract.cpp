// Files: how they are opened, shared, read and written.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <string>
#include <vector>

#include "test_window.h"

namespace {

using Text = std::basic_string<WCHAR>;

constexpr DWORD kReadWrite = GENERIC_READ | GENERIC_WRITE;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

Text TemporaryDirectory() {
  WCHAR path[MAX_PATH] = {};
  const DWORD length = GetTempPathW(MAX_PATH, path);
  return Text(path, length) + TEXT("veltra contract\\");
}

class File {
 public:
  explicit File(HANDLE handle) : handle_(handle) {}
  ~File() { Close(); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
  [[nodiscard]] HANDLE Get() const { return handle_; }
  void Close() {
    if (handle_ != INVALID_HANDLE_VALUE) CloseHandle(handle_);
    handle_ = INVALID_HANDLE_VALUE;
  }
  bool Write(const std::string& bytes) const {
    DWORD written = 0;
    return WriteFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
           written == bytes.size();
  }
  [[nodiscard]] std::string Read(DWORD most = 100) const {
    std::string bytes(most, '\0');
    DWORD count = 0;
    EXPECT_TRUE(ReadFile(handle_, bytes.data(), most, &count, nullptr));
    bytes.resize(count);
    return bytes;
  }
  LONGLONG Seek(LONGLONG distance, DWORD method) const {
    LARGE_INTEGER move = {};
    LARGE_INTEGER reached = {};
    move.QuadPart = distance;
    return SetFilePointerEx(handle_, move, &reached, method) ? reached.QuadPart : -1;
  }
  [[nodiscard]] LONGLONG Size() const {
    LARGE_INTEGER size = {};
    return GetFileSizeEx(handle_, &size) ? size.QuadPart : -1;
  }

 private:
  HANDLE handle_;
};

class Files : public testing::Test {
 protected:
  void SetUp() override {
    Clear();
    ASSERT_TRUE(CreateDirectoryW(directory_.c_str(), nullptr));
  }
  void TearDown() override { Clear(); }

  [[nodiscard]] Text PathOf(const Text& name) const { return directory_ + name; }
  [[nodiscard]] HANDLE Open(const Text& name, DWORD access, DWORD disposition, DWORD share = 0,
                            DWORD attributes = FILE_ATTRIBUTE_NORMAL) const {
    SetLastError(0xDEAD);
    return CreateFileW(PathOf(name).c_str(), access, share, nullptr, disposition, attributes, nullptr);
  }
  // The error with which the opening fails; 0 when it works, and the file is closed again.
  [[nodiscard]] DWORD ErrorOfOpening(const Text& name, DWORD access, DWORD disposition,
                                     DWORD share = 0) const {
    const File file(Open(name, access, disposition, share));
    return file ? 0 : GetLastError();
  }
  void Make(const Text& name, const std::string& content) const {
    const File file(Open(name, GENERIC_WRITE, CREATE_ALWAYS));
    ASSERT_TRUE(file && file.Write(content));
  }
  [[nodiscard]] std::string Content(const Text& name) const {
    const File file(Open(name, GENERIC_READ, OPEN_EXISTING, kShareAll));
    return file ? file.Read() : "cannot be opened";
  }
  [[nodiscard]] std::vector<Text> Find(const Text& pattern) const {
    std::vector<Text> names;
    WIN32_FIND_DATAW found = {};
    const HANDLE search = FindFirstFileW(PathOf(pattern).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return names;
    do names.emplace_back(found.cFileName);
    while (FindNextFileW(search, &found));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
    EXPECT_TRUE(FindClose(search));
    std::sort(names.begin(), names.end());
    return names;
  }

 private:
  void Clear() const {
    for (const Text& name : Find(TEXT("*"))) {
      if (name == TEXT(".") || name == TEXT("..")) continue;
      const Text path = PathOf(name);
      if ((GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        RemoveDirectoryW(path.c_str());
        continue;
      }
      SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
      DeleteFileW(path.c_str());
    }
    RemoveDirectoryW(directory_.c_str());
  }

  const Text directory_ = TemporaryDirectory();
};

TEST_F(Files, DispositionsOfAFileThatIsThereAndOfOneThatIsNot) {
  struct Row {
    DWORD disposition;
    DWORD errorWhenThere;  // of GetLastError after the call, also when it works
    bool emptied;
    DWORD errorWhenMissing;
  };
  constexpr Row kRows[] = {
      {CREATE_NEW, ERROR_FILE_EXISTS, false, ERROR_SUCCESS},
      {CREATE_ALWAYS, ERROR_ALREADY_EXISTS, true, ERROR_SUCCESS},
      {OPEN_EXISTING, ERROR_SUCCESS, false, ERROR_FILE_NOT_FOUND},
      {OPEN_ALWAYS, ERROR_ALREADY_EXISTS, false, ERROR_SUCCESS},
      {TRUNCATE_EXISTING, ERROR_SUCCESS, true, ERROR_FILE_NOT_FOUND},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.disposition);
    Make(TEXT("there.txt"), "content");
    const File there(Open(TEXT("THERE.txt"), kReadWrite, row.disposition));
    // OPEN_EXISTING and TRUNCATE_EXISTING say nothing about the last error when they work.
    if (!there || row.errorWhenThere != ERROR_SUCCESS) {
      EXPECT_EQ(GetLastError(), row.errorWhenThere);
    }
    EXPECT_EQ(static_cast<bool>(there), row.disposition != CREATE_NEW);
    if (there) {
      EXPECT_EQ(there.Size(), row.emptied ? 0 : 7);
    }

    File missing(Open(TEXT("missing.txt"), kReadWrite, row.disposition));
    if (!missing) {
      EXPECT_EQ(GetLastError(), row.errorWhenMissing);
    }
    EXPECT_EQ(static_cast<bool>(missing), row.errorWhenMissing == ERROR_SUCCESS);
    if (missing && row.disposition != OPEN_EXISTING) {
      EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS});
    }
    // A file that is open without sharing cannot be deleted.
    if (missing) {
      EXPECT_FALSE(DeleteFileW(PathOf(TEXT("missing.txt")).c_str()));
      EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
    }
    missing.Close();
    DeleteFileW(PathOf(TEXT("missing.txt")).c_str());
  }
}

TEST_F(Files, PathsThatLeadNowhere) {
  EXPECT_EQ(ErrorOfOpening(TEXT("no such directory\\file"), GENERIC_READ, OPEN_EXISTING),
            DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(ErrorOfOpening(TEXT("no such directory\\file"), GENERIC_WRITE, CREATE_ALWAYS),
            DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(
      CreateFileW(TEXT(""), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr),
      INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(ErrorOfOpening(TEXT("a<b"), GENERIC_WRITE, CREATE_ALWAYS), DWORD{ERROR_INVALID_NAME});
  ASSERT_TRUE(CreateDirectoryW(PathOf(TEXT("inner")).c_str(), nullptr));
  EXPECT_EQ(ErrorOfOpening(TEXT("inner"), GENERIC_READ, OPEN_EXISTING, kShareAll),
            DWORD{ERROR_ACCESS_DENIED});
  // "." and "..", slashes, and dots and blanks at the end of a name.
  Make(TEXT("inner\\..\\.\\plain.txt"), "x");
  EXPECT_EQ(ErrorOfOpening(TEXT("inner/../PLAIN.TXT. "), GENERIC_READ, OPEN_EXISTING), DWORD{ERROR_SUCCESS});
}

TEST_F(Files, OpeningsOfOneFileMustAgree) {
  struct Row {
    DWORD firstAccess;
    DWORD firstShare;
    DWORD secondAccess;
    DWORD secondShare;
    bool agrees;
  };
  constexpr Row kRows[] = {
      {GENERIC_READ, 0, GENERIC_READ, kShareAll, false},
      {GENERIC_READ, FILE_SHARE_READ, GENERIC_READ, FILE_SHARE_READ, true},
      {GENERIC_READ, FILE_SHARE_READ, GENERIC_READ, FILE_SHARE_WRITE, false},
      {GENERIC_READ, FILE_SHARE_READ, GENERIC_WRITE, kShareAll, false},
      {kReadWrite, FILE_SHARE_READ, GENERIC_READ, FILE_SHARE_READ, false},
      {kReadWrite, FILE_SHARE_READ, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, true},
      {kReadWrite, FILE_SHARE_READ, kReadWrite, FILE_SHARE_READ | FILE_SHARE_WRITE, false},
      {kReadWrite, kShareAll, kReadWrite, kShareAll, true},
  };
  Make(TEXT("shared.txt"), "x");
  for (const Row& row : kRows) {
    SCOPED_TRACE(&row - kRows);
    const File first(Open(TEXT("shared.txt"), row.firstAccess, OPEN_EXISTING, row.firstShare));
    ASSERT_TRUE(first);
    EXPECT_EQ(ErrorOfOpening(TEXT("shared.txt"), row.secondAccess, OPEN_EXISTING, row.secondShare),
              row.agrees ? DWORD{ERROR_SUCCESS} : DWORD{ERROR_SHARING_VIOLATION});
  }
  // A closed handle stands in nobody's way, and what was refused has emptied nothing.
  const File writer(Open(TEXT("shared.txt"), kReadWrite, OPEN_EXISTING, FILE_SHARE_READ));
  EXPECT_EQ(ErrorOfOpening(TEXT("shared.txt"), GENERIC_WRITE, CREATE_ALWAYS, kShareAll),
            DWORD{ERROR_SHARING_VIOLATION});
  EXPECT_EQ(writer.Size(), 1);
}

TEST_F(Files, WritingAtTheEndKeepsWhatWasThere) {
  Make(TEXT("log.txt"), "first");
  for (const char* line : {" second", " third"}) {
    const File file(Open(TEXT("log.txt"), kReadWrite, OPEN_ALWAYS, FILE_SHARE_READ));
    EXPECT_EQ(file.Seek(0, FILE_END), file.Size());
    EXPECT_TRUE(file.Write(line));
  }
  EXPECT_EQ(Content(TEXT("log.txt")), "first second third");

  const File file(Open(TEXT("log.txt"), kReadWrite, OPEN_EXISTING));
  EXPECT_EQ(file.Read(5), "first");
  EXPECT_EQ(file.Seek(1, FILE_CURRENT), 6);
  EXPECT_EQ(file.Read(6), "second");
  EXPECT_EQ(file.Seek(-5, FILE_END), 13);
  EXPECT_EQ(file.Read(), "third");
  EXPECT_EQ(file.Read(), "");  // the end of a file is no error
  EXPECT_EQ(file.Seek(-1, FILE_BEGIN), -1);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_NEGATIVE_SEEK});
  EXPECT_EQ(file.Seek(5, FILE_BEGIN), 5);
  EXPECT_TRUE(SetEndOfFile(file.Get()));
  EXPECT_TRUE(FlushFileBuffers(file.Get()));
  EXPECT_EQ(file.Size(), 5);
}

TEST_F(Files, AHandleReadsAndWritesAsItWasOpened) {
  Make(TEXT("plain.txt"), "plain");
  DWORD count = 0;
  char byte = 'x';
  const File reader(Open(TEXT("plain.txt"), GENERIC_READ, OPEN_EXISTING, kShareAll));
  EXPECT_FALSE(WriteFile(reader.Get(), &byte, 1, &count, nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
  const File writer(Open(TEXT("plain.txt"), GENERIC_WRITE, OPEN_EXISTING, kShareAll));
  EXPECT_FALSE(ReadFile(writer.Get(), &byte, 1, &count, nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_TRUE(writer.Write("PL"));
  EXPECT_EQ(reader.Read(), "PLain");
}

TEST_F(Files, ACopyOfAReadOnlyFileIsReadOnly) {
  const Text path = PathOf(TEXT("fixed.txt"));
  const Text copy = PathOf(TEXT("copy.txt"));
  Make(TEXT("fixed.txt"), "fixed");
  ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY));
  EXPECT_NE(GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_READONLY, 0U);
  EXPECT_TRUE(CopyFileW(path.c_str(), copy.c_str(), FALSE));
  EXPECT_NE(GetFileAttributesW(copy.c_str()) & FILE_ATTRIBUTE_READONLY, 0U);
  EXPECT_EQ(Content(TEXT("copy.txt")), "fixed");
  EXPECT_FALSE(DeleteFileW(copy.c_str()));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
}

TEST_F(Files, AReadOnlyFileRefusesWriters) {
  const Text path = PathOf(TEXT("fixed.txt"));
  Make(TEXT("fixed.txt"), "fixed");
  Make(TEXT("other.txt"), "other");
  ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY));
  if (contract::WineDeviates("lets a host's root write read-only files") &&
      ErrorOfOpening(TEXT("fixed.txt"), kReadWrite, OPEN_EXISTING) == ERROR_SUCCESS)
    GTEST_SKIP() << "Wine, run by root, lets everyone write";
  EXPECT_EQ(ErrorOfOpening(TEXT("fixed.txt"), kReadWrite, OPEN_EXISTING), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(ErrorOfOpening(TEXT("fixed.txt"), GENERIC_WRITE, CREATE_ALWAYS), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_FALSE(CopyFileW(PathOf(TEXT("other.txt")).c_str(), path.c_str(), FALSE));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(Content(TEXT("fixed.txt")), "fixed");
  ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL));
  EXPECT_EQ(ErrorOfOpening(TEXT("fixed.txt"), kReadWrite, OPEN_EXISTING), DWORD{ERROR_SUCCESS});
}

TEST_F(Files, CopyingReplacesOrRefuses) {
  const Text from = PathOf(TEXT("from.txt"));
  const Text to = PathOf(TEXT("to.txt"));
  Make(TEXT("from.txt"), "new");
  Make(TEXT("to.txt"), "older and longer");
  EXPECT_FALSE(CopyFileW(from.c_str(), to.c_str(), TRUE));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_EXISTS});
  EXPECT_EQ(Content(TEXT("to.txt")), "older and longer");
  EXPECT_TRUE(CopyFileW(from.c_str(), to.c_str(), FALSE));
  EXPECT_EQ(Content(TEXT("to.txt")), "new");
  EXPECT_FALSE(CopyFileW(PathOf(TEXT("missing.txt")).c_str(), to.c_str(), FALSE));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});

  const File reader(Open(TEXT("to.txt"), GENERIC_READ, OPEN_EXISTING, FILE_SHARE_READ));
  EXPECT_FALSE(CopyFileW(from.c_str(), to.c_str(), FALSE));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
  const File writer(Open(TEXT("from.txt"), GENERIC_WRITE, OPEN_EXISTING, 0));
  EXPECT_FALSE(CopyFileW(from.c_str(), PathOf(TEXT("third.txt")).c_str(), FALSE));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
}

TEST_F(Files, RenamingAndDeleting) {
  const Text from = PathOf(TEXT("from.txt"));
  const Text to = PathOf(TEXT("to.txt"));
  Make(TEXT("from.txt"), "new");
  Make(TEXT("to.txt"), "old");
  EXPECT_FALSE(MoveFileExW(from.c_str(), to.c_str(), 0));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_ALREADY_EXISTS});
  EXPECT_TRUE(MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
  EXPECT_EQ(Content(TEXT("to.txt")), "new");
  EXPECT_FALSE(MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
  {
    const File reader(Open(TEXT("to.txt"), GENERIC_READ, OPEN_EXISTING, FILE_SHARE_READ | FILE_SHARE_WRITE));
    EXPECT_FALSE(MoveFileExW(to.c_str(), from.c_str(), 0));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_FALSE(DeleteFileW(to.c_str()));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
  }
  EXPECT_TRUE(DeleteFileW(to.c_str()));
  EXPECT_FALSE(DeleteFileW(to.c_str()));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(GetFileAttributesW(to.c_str()), INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST_F(Files, DirectoriesAndTheirLists) {
  ASSERT_TRUE(CreateDirectoryW(PathOf(TEXT("inner\\")).c_str(), nullptr));
  EXPECT_FALSE(CreateDirectoryW(PathOf(TEXT("INNER")).c_str(), nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_ALREADY_EXISTS});
  EXPECT_FALSE(CreateDirectoryW(PathOf(TEXT("missing\\inner")).c_str(), nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(GetFileAttributesW(PathOf(TEXT("inner")).c_str()) & FILE_ATTRIBUTE_DIRECTORY,
            DWORD{FILE_ATTRIBUTE_DIRECTORY});

  for (const WCHAR* name : {TEXT("a.txt"), TEXT("B.TXT"), TEXT("c.bin"), TEXT("inner\\d.txt")})
    Make(name, "x");
  EXPECT_EQ(Find(TEXT("*.txt")), (std::vector<Text>{TEXT("B.TXT"), TEXT("a.txt")}));
  EXPECT_EQ(Find(TEXT("?.bin")), (std::vector<Text>{TEXT("c.bin")}));
  EXPECT_EQ(Find(TEXT("*")), (std::vector<Text>{TEXT("."), TEXT(".."), TEXT("B.TXT"), TEXT("a.txt"),
                                                TEXT("c.bin"), TEXT("inner")}));
  WIN32_FIND_DATAW found = {};
  EXPECT_EQ(FindFirstFileW(PathOf(TEXT("*.zip")).c_str(), &found), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(FindFirstFileW(PathOf(TEXT("missing\\*")).c_str(), &found), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});

  EXPECT_FALSE(RemoveDirectoryW(PathOf(TEXT("inner")).c_str()));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_DIR_NOT_EMPTY});
  EXPECT_TRUE(DeleteFileW(PathOf(TEXT("inner\\d.txt")).c_str()));
  EXPECT_TRUE(RemoveDirectoryW(PathOf(TEXT("inner")).c_str()));
}

}  // namespace
