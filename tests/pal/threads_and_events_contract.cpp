// Events, mutexes, threads, waiting and time.
#include <gtest/gtest.h>
#include <windows.h>

#include "test_window.h"

namespace {

using contract::TestThread;

constexpr uint64_t kTick = 16;  // ms: clocks tick

class OwnedHandle {
 public:
  explicit OwnedHandle(HANDLE handle) : handle_(handle) {}
  ~OwnedHandle() { CloseHandle(handle_); }
  OwnedHandle(const OwnedHandle&) = delete;
  OwnedHandle& operator=(const OwnedHandle&) = delete;
  [[nodiscard]] HANDLE Get() const { return handle_; }

 private:
  HANDLE handle_;
};

HANDLE NewEvent(bool manualReset, bool signaled = false) {
  return CreateEventW(nullptr, manualReset ? TRUE : FALSE, signaled ? TRUE : FALSE, nullptr);
}

DWORD Poll(const OwnedHandle& handle) {
  return WaitForSingleObject(handle.Get(), 0);
}

constexpr DWORD kSignaled = WAIT_OBJECT_0;
constexpr DWORD kNot = WAIT_TIMEOUT;

TEST(Events, ResetThemselvesOrNot) {
  const OwnedHandle automatic(NewEvent(false, true));
  EXPECT_EQ(Poll(automatic), kSignaled);
  EXPECT_EQ(Poll(automatic), kNot);
  SetEvent(automatic.Get());
  SetEvent(automatic.Get());  // counts once
  EXPECT_EQ(Poll(automatic), kSignaled);
  EXPECT_EQ(Poll(automatic), kNot);

  const OwnedHandle manual(NewEvent(true));
  EXPECT_EQ(Poll(manual), kNot);
  SetEvent(manual.Get());
  EXPECT_EQ(Poll(manual), kSignaled);
  EXPECT_EQ(Poll(manual), kSignaled);
  ResetEvent(manual.Get());
  EXPECT_EQ(Poll(manual), kNot);
}

TEST(Events, OneThreadGoesOnForEachAutomaticSet) {
  const OwnedHandle gate(NewEvent(false));
  const OwnedHandle passed(NewEvent(false));
  const auto pass = [&] {
    if (WaitForSingleObject(gate.Get(), INFINITE) == WAIT_OBJECT_0) SetEvent(passed.Get());
  };
  const TestThread first(pass);
  const TestThread second(pass);
  SetEvent(gate.Get());
  EXPECT_EQ(WaitForSingleObject(passed.Get(), 10'000), kSignaled);
  EXPECT_EQ(WaitForSingleObject(passed.Get(), 50), kNot);
  SetEvent(gate.Get());
  EXPECT_EQ(WaitForSingleObject(passed.Get(), 10'000), kSignaled);
}

TEST(Waiting, ForSeveralObjects) {
  const OwnedHandle a(NewEvent(false));
  const OwnedHandle b(NewEvent(false, true));
  const OwnedHandle c(NewEvent(false, true));
  const HANDLE all[] = {a.Get(), b.Get(), c.Get()};
  EXPECT_EQ(WaitForMultipleObjects(3, all, FALSE, 0), WAIT_OBJECT_0 + 1);  // the first of the signaled ones
  EXPECT_EQ(Poll(c), kSignaled);                                           // the others are left alone
  SetEvent(b.Get());
  SetEvent(c.Get());
  EXPECT_EQ(WaitForMultipleObjects(3, all, TRUE, 20), kNot);
  EXPECT_EQ(Poll(b), kSignaled);  // an unfinished wait for all takes none
  SetEvent(b.Get());
  SetEvent(a.Get());
  EXPECT_EQ(WaitForMultipleObjects(3, all, TRUE, 20), kSignaled);
  EXPECT_EQ(Poll(a), kNot);
}

TEST(Waiting, TakesItsTimeAndFailsForWhatIsClosed) {
  const OwnedHandle never(NewEvent(true));
  const uint64_t start = GetTickCount64();
  EXPECT_EQ(WaitForSingleObject(never.Get(), 60), kNot);
  EXPECT_GE(GetTickCount64() - start + kTick, 60u);

  const HANDLE closed = NewEvent(true);
  EXPECT_TRUE(CloseHandle(closed));
  SetLastError(0);
  EXPECT_EQ(WaitForSingleObject(closed, 0), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
  SetLastError(0);
  EXPECT_FALSE(SetEvent(closed));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
  EXPECT_FALSE(CloseHandle(closed));
}

TEST(Threads, SignalTheirEnd) {
  const OwnedHandle go(NewEvent(true));
  DWORD idInside = 0;
  const TestThread thread([&] {
    idInside = GetCurrentThreadId();
    WaitForSingleObject(go.Get(), INFINITE);
  });
  ASSERT_NE(thread.Get(), nullptr);
  EXPECT_EQ(WaitForSingleObject(thread.Get(), 30), kNot);
  DWORD code = 0;
  EXPECT_TRUE(GetExitCodeThread(thread.Get(), &code));
  EXPECT_EQ(code, static_cast<DWORD>(STILL_ACTIVE));
  SetEvent(go.Get());
  EXPECT_EQ(WaitForSingleObject(thread.Get(), 10'000), kSignaled);
  EXPECT_TRUE(GetExitCodeThread(thread.Get(), &code));
  EXPECT_EQ(code, 17u);
  EXPECT_EQ(idInside, thread.Id());
  EXPECT_NE(idInside, GetCurrentThreadId());
}

TEST(Threads, HaveALastErrorEach) {
  SetLastError(5);
  const TestThread thread([] { SetLastError(7); });
  thread.Join();
  EXPECT_EQ(GetLastError(), 5u);
}

TEST(Threads, TakeTurnsThroughEvents) {
  constexpr int kRounds = 500;
  const OwnedHandle ping(NewEvent(false));
  const OwnedHandle pong(NewEvent(false));
  int count = 0;
  const TestThread partner([&] {
    for (int i = 0; i < kRounds; ++i) {
      WaitForSingleObject(ping.Get(), INFINITE);
      ++count;
      SetEvent(pong.Get());
    }
  });
  for (int i = 0; i < kRounds; ++i) {
    SetEvent(ping.Get());
    ASSERT_EQ(WaitForSingleObject(pong.Get(), 10'000), kSignaled);
    ASSERT_EQ(count, i + 1);
  }
}

TEST(Mutexes, TellThatTheyExist) {
  SetLastError(99);
  const OwnedHandle first(CreateMutexW(nullptr, TRUE, TEXT("ContractMutex")));
  ASSERT_NE(first.Get(), nullptr);
  EXPECT_EQ(GetLastError(), 0u);
  {
    const OwnedHandle second(CreateMutexW(nullptr, TRUE, TEXT("ContractMutex")));
    ASSERT_NE(second.Get(), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
  }
  const OwnedHandle other(CreateMutexW(nullptr, FALSE, TEXT("contractmutex")));  // case counts
  EXPECT_EQ(GetLastError(), 0u);
}

TEST(Mutexes, BelongToOneThread) {
  const OwnedHandle mutex(CreateMutexW(nullptr, TRUE, nullptr));
  EXPECT_EQ(Poll(mutex), kSignaled);  // the owner may take it again
  DWORD waited = 0;
  DWORD released = TRUE;
  DWORD error = 0;
  const auto tryIt = [&] {
    waited = WaitForSingleObject(mutex.Get(), 0);
    released = static_cast<DWORD>(ReleaseMutex(mutex.Get()));
    error = GetLastError();
  };
  TestThread(tryIt).Join();
  EXPECT_EQ(waited, kNot);
  EXPECT_FALSE(released);
  EXPECT_EQ(error, static_cast<DWORD>(ERROR_NOT_OWNER));
  EXPECT_TRUE(ReleaseMutex(mutex.Get()));
  EXPECT_TRUE(ReleaseMutex(mutex.Get()));
  TestThread(tryIt).Join();
  EXPECT_EQ(waited, kSignaled);
  EXPECT_TRUE(released);
}

TEST(Time, AllClocksGoTogether) {
  LARGE_INTEGER frequency;
  LARGE_INTEGER before;
  LARGE_INTEGER after;
  ASSERT_TRUE(QueryPerformanceFrequency(&frequency));
  SYSTEMTIME localBefore;
  SYSTEMTIME localAfter;
  GetLocalTime(&localBefore);
  QueryPerformanceCounter(&before);
  const uint64_t ticks = GetTickCount64();
  Sleep(200);
  const uint64_t tickSpan = GetTickCount64() - ticks;
  QueryPerformanceCounter(&after);
  GetLocalTime(&localAfter);
  const auto counterSpan =
      static_cast<uint64_t>((after.QuadPart - before.QuadPart) * 1000 / frequency.QuadPart);
  EXPECT_GE(tickSpan + kTick, 200u);
  EXPECT_GE(counterSpan + kTick, 200u);
  EXPECT_LE(counterSpan, tickSpan + 100);
  const auto inDay = [](const SYSTEMTIME& t) {
    return ((t.wHour * 60 + t.wMinute) * 60 + t.wSecond) * 1000 + t.wMilliseconds;
  };
  const int localSpan = (inDay(localAfter) - inDay(localBefore) + 86'400'000) % 86'400'000;
  EXPECT_GE(localSpan + static_cast<int>(kTick), 200);
}

}  // namespace
