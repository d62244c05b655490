// Keys and values of the registry.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "test_window.h"

namespace {

using Text = std::basic_string<WCHAR>;

class Registry : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(Create(outer, &key), ERROR_SUCCESS); }
  void TearDown() override { RegCloseKey(key); }
  LSTATUS Create(const Text& path, HKEY* made) {
    return RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                           KEY_ALL_ACCESS, nullptr, made, nullptr);
  }
  LSTATUS Open(const Text& path, REGSAM access, HKEY* opened) {
    return RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, access, opened);
  }
  LSTATUS Set(HKEY to, DWORD type, const void* data, DWORD size) {
    return RegSetValueExW(to, TEXT("Value"), 0, type, static_cast<const BYTE*>(data), size);
  }

  // No run finds the keys of another one.
  const Text outer = TEXT("Software\\Veltra Contract\\") + contract::UniqueName();
  HKEY key = nullptr;
};

TEST_F(Registry, KeysAreMadeWithAllAboveThem) {
  HKEY inner = nullptr;
  EXPECT_EQ(Open(outer + TEXT("\\Above\\Inner"), KEY_READ, &inner), ERROR_FILE_NOT_FOUND);
  for (int made = 0; made < 2; ++made) {
    ASSERT_EQ(Create(outer + TEXT("\\Above\\Inner"), &inner), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(inner), ERROR_SUCCESS);
  }
  EXPECT_EQ(Open(outer + TEXT("\\aBOVE"), KEY_READ, &inner), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(inner), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(inner), ERROR_INVALID_HANDLE);
}

// The last write wins, with whatever type and size it has; what does not fit is left out whole.
TEST_F(Registry, ValuesComeBackWithTypeAndSize) {
  const DWORD number = 0xFFFFFFFE;
  constexpr DWORD kBytes = 3;       // REG_BINARY
  const WCHAR text[] = TEXT("10");  // 6 bytes with its terminator
  const struct {
    DWORD type;
    const void* data;
    DWORD size;
    LSTATUS result;
    DWORD read;
  } rows[] = {{REG_DWORD, &number, 4, ERROR_SUCCESS, number},
              {REG_SZ, text, 6, ERROR_MORE_DATA, 0x55555555},
              {kBytes, text, 2, ERROR_SUCCESS, 0x55550031}};
  for (const auto& row : rows) {
    ASSERT_EQ(Set(key, row.type, row.data, row.size), ERROR_SUCCESS);
    DWORD buffer = 0x55555555;
    DWORD type = 0;
    DWORD size = sizeof(buffer);
    EXPECT_EQ(RegQueryValueExW(key, TEXT("vALUE"), nullptr, &type, reinterpret_cast<BYTE*>(&buffer), &size),
              row.result);
    EXPECT_EQ(buffer, row.read);
    EXPECT_EQ(type, row.type);
    EXPECT_EQ(size, row.size);
  }
  WCHAR name[8] = {};
  DWORD length = 8;
  EXPECT_EQ(RegEnumValueW(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
  EXPECT_EQ(Text(name, length), TEXT("Value"));
  EXPECT_EQ(RegEnumValueW(key, 1, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_NO_MORE_ITEMS);
}

TEST_F(Registry, AHandleAllowsWhatItWasOpenedFor) {
  const struct {
    REGSAM access;
    LSTATUS set;
    LSTATUS query;
  } rows[] = {{KEY_READ, ERROR_ACCESS_DENIED, ERROR_FILE_NOT_FOUND},
              {KEY_WRITE, ERROR_SUCCESS, ERROR_ACCESS_DENIED},
              {KEY_READ | KEY_WRITE, ERROR_SUCCESS, ERROR_SUCCESS}};
  for (const auto& row : rows) {
    HKEY opened = nullptr;
    ASSERT_EQ(Open(outer, row.access, &opened), ERROR_SUCCESS);
    const DWORD number = 1;
    DWORD size = 0;
    EXPECT_EQ(Set(opened, REG_DWORD, &number, sizeof(number)), row.set);
    EXPECT_EQ(RegQueryValueExW(opened, TEXT("Value"), nullptr, nullptr, nullptr, &size), row.query);
    EXPECT_EQ(RegCloseKey(opened), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExW(opened, TEXT("Value"), nullptr, nullptr, nullptr, &size),
              ERROR_INVALID_HANDLE);
  }
}

}  // namespace
