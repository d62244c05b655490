// COM objects: where they can be made, and how long they live.
#include <gtest/gtest.h>
#include <windows.h>

#include <mmdeviceapi.h>
#include <objbase.h>

#include "tests/pal/test_window.h"

namespace {

using contract::TestThread;

constexpr CLSID kEnumeratorClass = {
    0xBCDE0395, 0xE52F, 0x467C, {0x8E, 0x3D, 0xC4, 0x57, 0x92, 0x91, 0x69, 0x2E}};
constexpr IID kEnumerator = {0xA95664D2, 0x9614, 0x4F35, {0xA7, 0x46, 0xDE, 0x8D, 0xB6, 0x36, 0x17, 0xE6}};
constexpr IID kUnknown = {0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID kNobodys = {0x11111111, 0x2222, 0x3333, {1, 2, 3, 4, 5, 6, 7, 8}};

HRESULT CreateEnumerator(void** object) {
  return CoCreateInstance(kEnumeratorClass, nullptr, CLSCTX_INPROC_SERVER, kEnumerator, object);
}

TEST(Com, IdentifiersAreNew) {
  GUID first = {};
  GUID second = {};
  EXPECT_EQ(CoCreateGuid(&first), S_OK);
  EXPECT_EQ(CoCreateGuid(&second), S_OK);
  EXPECT_FALSE(first == second);
  EXPECT_FALSE(first == GUID{});
}

TEST(Com, NoObjectsBeforeTheBeginning) {
  HRESULT result = S_OK;
  void* object = &result;
  const TestThread thread([&] { result = CreateEnumerator(&object); });
  thread.Join();
  EXPECT_EQ(result, CO_E_NOTINITIALIZED);
  EXPECT_EQ(object, nullptr);
}

TEST(Com, ObjectsCountTheirReferences) {
  ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
  void* created = nullptr;
  const HRESULT result = CreateEnumerator(&created);
  if (FAILED(result) && contract::WineDeviates("it has no playback device here")) {
    CoUninitialize();
    GTEST_SKIP() << "Wine has no playback device here";
  }
  ASSERT_EQ(result, S_OK);
  auto* enumerator = static_cast<IMMDeviceEnumerator*>(created);
  void* other = nullptr;
  EXPECT_EQ(enumerator->QueryInterface(kUnknown, &other), S_OK);
  EXPECT_NE(other, nullptr);
  static_cast<IUnknown*>(other)->Release();
  EXPECT_EQ(enumerator->QueryInterface(kNobodys, &other), E_NOINTERFACE);
  EXPECT_EQ(other, nullptr);
  const ULONG references = enumerator->AddRef();
  EXPECT_EQ(enumerator->Release(), references - 1);
  enumerator->Release();
  CoUninitialize();
}

}  // namespace
