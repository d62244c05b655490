// Keys and values of the registry.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr const WCHAR* kOuter = TEXT("Software\\Veltra Contract");
constexpr const WCHAR* kInner = TEXT("Software\\Veltra Contract\\Inner");

const BYTE* BytesOf(const void* data) {
  return static_cast<const BYTE*>(data);
}

class Registry : public testing::Test {
 protected:
  void SetUp() override { RemoveKeys(); }
  void TearDown() override { RemoveKeys(); }

  static void RemoveKeys() {
    for (const WCHAR* path : {kInner, kOuter}) RegDeleteKeyW(HKEY_CURRENT_USER, path);
  }

  static HKEY Create(const WCHAR* path = kOuter, REGSAM access = KEY_ALL_ACCESS) {
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, REG_OPTION_NON_VOLATILE, access, nullptr,
                              &key, nullptr),
              ERROR_SUCCESS);
    return key;
  }
};

TEST_F(Registry, KeysAreMadeWithAllAboveThem) {
  HKEY key = nullptr;
  EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, kInner, 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
  DWORD disposition = 0;
  for (const DWORD expected : {DWORD{REG_CREATED_NEW_KEY}, DWORD{REG_OPENED_EXISTING_KEY}}) {
    ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, kInner, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                              nullptr, &key, &disposition),
              ERROR_SUCCESS);
    EXPECT_EQ(disposition, expected);
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
  }
  ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, TEXT("SOFTWARE\\VELTRA contract"), 0, KEY_READ, &key),
            ERROR_SUCCESS);
  HKEY inner = nullptr;
  EXPECT_EQ(RegOpenKeyExW(key, TEXT("inner"), 0, KEY_READ, &inner), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(inner), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
}

TEST_F(Registry, ValuesComeBackWithTypeAndSize) {
  const HKEY key = Create();
  const DWORD number = 0xFFFFFFFF;
  ASSERT_EQ(RegSetValueExW(key, TEXT("Number"), 0, REG_DWORD, BytesOf(&number), sizeof(number)),
            ERROR_SUCCESS);
  DWORD read = 0;
  DWORD type = 0;
  DWORD size = sizeof(read);
  EXPECT_EQ(RegQueryValueExW(key, TEXT("nUMBER"), nullptr, &type, reinterpret_cast<BYTE*>(&read), &size),
            ERROR_SUCCESS);
  EXPECT_EQ(read, number);
  EXPECT_EQ(type, DWORD{REG_DWORD});
  EXPECT_EQ(size, sizeof(read));

  // The last write wins, with whatever type and size it has.
  const BYTE two[] = {7, 8};
  ASSERT_EQ(RegSetValueExW(key, TEXT("Number"), 0, REG_BINARY, two, sizeof(two)), ERROR_SUCCESS);
  size = sizeof(read);
  read = 0;
  EXPECT_EQ(RegQueryValueExW(key, TEXT("Number"), nullptr, &type, reinterpret_cast<BYTE*>(&read), &size),
            ERROR_SUCCESS);
  EXPECT_EQ(read, 0x0807U);
  EXPECT_EQ(type, DWORD{REG_BINARY});
  EXPECT_EQ(size, sizeof(two));
  EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
}

TEST_F(Registry, AValueThatDoesNotFitIsLeftOutWhole) {
  const HKEY key = Create();
  const WCHAR text[] = TEXT("10");  // 6 bytes with its terminator
  ASSERT_EQ(RegSetValueExW(key, TEXT("Text"), 0, REG_SZ, BytesOf(text), sizeof(text)), ERROR_SUCCESS);
  DWORD buffer = 0x55555555;
  DWORD size = sizeof(buffer);
  DWORD type = 0;
  EXPECT_EQ(RegQueryValueExW(key, TEXT("Text"), nullptr, &type, reinterpret_cast<BYTE*>(&buffer), &size),
            ERROR_MORE_DATA);
  EXPECT_EQ(size, 6U);
  EXPECT_EQ(type, DWORD{REG_SZ});
  EXPECT_EQ(buffer, 0x55555555U);

  // Without a buffer the size is told, and without a size nothing can be read.
  size = 0;
  EXPECT_EQ(RegQueryValueExW(key, TEXT("Text"), nullptr, nullptr, nullptr, &size), ERROR_SUCCESS);
  EXPECT_EQ(size, 6U);
  EXPECT_EQ(RegQueryValueExW(key, TEXT("Text"), nullptr, nullptr, reinterpret_cast<BYTE*>(&buffer), nullptr),
            ERROR_INVALID_PARAMETER);
  EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
}

TEST_F(Registry, AbsentValuesAreNotFound) {
  const HKEY key = Create();
  DWORD buffer = 0;
  DWORD size = sizeof(buffer);
  const auto query = [&](const WCHAR* name) {
    return RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(&buffer), &size);
  };
  EXPECT_EQ(query(TEXT("Absent")), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(query(nullptr), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(RegDeleteValueW(key, TEXT("Absent")), ERROR_FILE_NOT_FOUND);
  ASSERT_EQ(RegSetValueExW(key, TEXT("Gone"), 0, REG_DWORD, BytesOf(&buffer), sizeof(buffer)), ERROR_SUCCESS);
  EXPECT_EQ(RegDeleteValueW(key, TEXT("GONE")), ERROR_SUCCESS);
  EXPECT_EQ(query(TEXT("Gone")), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
  EXPECT_EQ(query(TEXT("Gone")), ERROR_INVALID_HANDLE);
}

TEST_F(Registry, AHandleAllowsWhatItWasOpenedFor) {
  RegCloseKey(Create());
  HKEY key = nullptr;
  const DWORD number = 1;
  ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, kOuter, 0, KEY_READ, &key), ERROR_SUCCESS);
  EXPECT_EQ(RegSetValueExW(key, TEXT("Number"), 0, REG_DWORD, BytesOf(&number), sizeof(number)),
            ERROR_ACCESS_DENIED);
  EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);

  ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, kOuter, 0, KEY_SET_VALUE, &key), ERROR_SUCCESS);
  EXPECT_EQ(RegSetValueExW(key, TEXT("Number"), 0, REG_DWORD, BytesOf(&number), sizeof(number)),
            ERROR_SUCCESS);
  DWORD size = 0;
  EXPECT_EQ(RegQueryValueExW(key, TEXT("Number"), nullptr, nullptr, nullptr, &size), ERROR_ACCESS_DENIED);
  EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
}

TEST_F(Registry, AKeyIsDeletedAloneAndUnderItsHandles) {
  const HKEY outer = Create();
  const HKEY inner = Create(kInner);
  EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, kOuter), ERROR_ACCESS_DENIED);  // a key lies below it
  EXPECT_EQ(RegDeleteKeyW(outer, TEXT("Inner")), ERROR_SUCCESS);
  EXPECT_EQ(RegDeleteKeyW(outer, TEXT("Inner")), ERROR_FILE_NOT_FOUND);
  const DWORD number = 1;
  EXPECT_EQ(RegSetValueExW(inner, TEXT("Number"), 0, REG_DWORD, BytesOf(&number), sizeof(number)),
            ERROR_KEY_DELETED);
  EXPECT_EQ(RegCloseKey(inner), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(outer), ERROR_SUCCESS);
}

}  // namespace
