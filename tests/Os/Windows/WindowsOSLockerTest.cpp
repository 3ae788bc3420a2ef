// The flash lock on the machine's semaphore, with a second handle in the part of another program.

#include <chrono>
#include <future>
#include <gmock/gmock.h>
#include <string>
#include <vector>
#include <windows.h>

#include "Os/QuorvelConfig.h"
#include "Os/Windows/WindowsOSLocker.h"
#include "Os/Windows/WindowsSemaphoreWrapper.h"
#include "Utils/Exception.h"
#include "tests/Os/SystemFaults.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Programs.h"
#include "tests/support/Settings.h"
#include "tests/support/Throws.h"
#include "tests/support/WaitUntil.h"

namespace {

using os::OSLockerWindows;
using test::IsRecordOf;
using test::LogCapture;
using test::LogLevel;
using test::ThrowsExactly;
using testing::ElementsAre;
using Clock = std::chrono::steady_clock;

constexpr const char* kSemaphoreName = "Global\\RavlApplySemaphore";
constexpr const char* kLock = "os::OSLocker::Lock";
constexpr const char* kUnLock = "os::OSLocker::UnLock";

// Another program that knows the semaphore: holds it, when it can, until it is destroyed.
class OtherProgram {
 public:
  OtherProgram() : m_semaphore(OpenSemaphoreA(SEMAPHORE_ALL_ACCESS, FALSE, kSemaphoreName)) {}
  OtherProgram(const OtherProgram&) = delete;
  OtherProgram& operator=(const OtherProgram&) = delete;
  ~OtherProgram() {
    unlock();
    CloseHandle(m_semaphore);
  }

  [[nodiscard]] bool knowsSemaphore() const { return m_semaphore != nullptr; }
  // Waits for its turn: tests that run at the same time use the same semaphore.
  [[nodiscard]] bool lock() { return waitFor(std::chrono::milliseconds(test::kDeadline)); }
  [[nodiscard]] bool tryLock() { return waitFor(std::chrono::milliseconds(0)); }
  void unlock() {
    if (m_isHolding) {
      ReleaseSemaphore(m_semaphore, 1, nullptr);
      m_isHolding = false;
    }
  }

 private:
  bool waitFor(std::chrono::milliseconds limit) {
    m_isHolding =
        WaitForSingleObject(m_semaphore, static_cast<DWORD>(limit.count())) == WAIT_OBJECT_0;
    return m_isHolding;
  }

  HANDLE m_semaphore;
  bool m_isHolding = false;
};

class WindowsOSLocker : public testing::Test {
 protected:
  WindowsOSLocker() { setTimeout(30'000); }

  void setTimeout(std::uint32_t milliseconds) { m_settings.write({{"Timeout", milliseconds}}); }

  test::Settings m_settings;
  utils::QuorvelConfig m_config{m_settings.path()};
};

TEST_F(WindowsOSLocker, TakesTheSemaphoreOfTheMachineAndGivesItBack) {
  OSLockerWindows locker;
  OtherProgram other;
  ASSERT_TRUE(other.knowsSemaphore());

  EXPECT_EQ(locker.Lock(), 0);
  EXPECT_FALSE(other.tryLock());
  EXPECT_EQ(locker.UnLock(), 0);
  EXPECT_TRUE(other.lock());
  other.unlock();
  EXPECT_EQ(locker.Lock(), 0);
}

TEST_F(WindowsOSLocker, HasACountOfOneAtTheMost) {
  OSLockerWindows locker;
  const HANDLE semaphore = OpenSemaphoreA(SEMAPHORE_ALL_ACCESS, FALSE, kSemaphoreName);
  ASSERT_NE(semaphore, nullptr);

  EXPECT_EQ(ReleaseSemaphore(semaphore, 2, nullptr), FALSE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_TOO_MANY_POSTS));
  CloseHandle(semaphore);
}

TEST_F(WindowsOSLocker, KeepsTheOuterOfTwoLocks) {
  OSLockerWindows locker;
  OtherProgram other;
  const os::OSLocker::AutoOSLocker outer;

  EXPECT_EQ(locker.Lock(), 2);
  EXPECT_THAT([] { const os::OSLocker::AutoOSLocker inner; },
              ThrowsExactly<utils::Exception>("Locking access to the Fennelbrook returns 2"));
  EXPECT_FALSE(other.tryLock());
}

TEST_F(WindowsOSLocker, GivesUpAfterTheTimeoutWhileAnotherProgramHoldsIt) {
  constexpr std::uint32_t kTimeout = 150;
  OSLockerWindows locker;
  OtherProgram other;
  ASSERT_TRUE(other.lock());
  setTimeout(kTimeout);
  const LogCapture log;
  const Clock::time_point start = Clock::now();

  EXPECT_EQ(locker.Lock(), 3);
  EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(kTimeout));
  EXPECT_THAT(log.messages(kLock),
              ElementsAre("result = 258",
                          "Timeout occured when the Semaphore was locked. Other application uses "
                          "Fennelbrook SDK at this moment"));
  EXPECT_THAT([] { const os::OSLocker::AutoOSLocker lock; },
              ThrowsExactly<utils::Exception>("Locking access to the Fennelbrook returns 3"));
}

// An event that a program started by this one knows by its name.
class NamedEvent {
 public:
  explicit NamedEvent(const std::string& purpose)
      : m_name("quorvel-test-" + std::to_string(GetCurrentProcessId()) + purpose),
        m_event(CreateEventA(nullptr, TRUE, FALSE, m_name.c_str())) {}
  NamedEvent(const NamedEvent&) = delete;
  NamedEvent& operator=(const NamedEvent&) = delete;
  ~NamedEvent() { CloseHandle(m_event); }

  [[nodiscard]] const std::string& name() const { return m_name; }
  void set() { SetEvent(m_event); }
  [[nodiscard]] bool await() const {
    const std::chrono::milliseconds limit(test::kDeadline);
    return WaitForSingleObject(m_event, static_cast<DWORD>(limit.count())) == WAIT_OBJECT_0;
  }

 private:
  const std::string m_name;
  HANDLE m_event;
};

TEST_F(WindowsOSLocker, IsHadOnceAnotherProcessHasGivenItBack) {
  OSLockerWindows locker;
  NamedEvent ready("ready");
  NamedEvent go("go");
  auto holder = std::async(std::launch::async, [&] {
    return test::runProgram(test::programBeside("semaphore_holder"), {ready.name(), go.name()});
  });
  ASSERT_TRUE(ready.await());

  setTimeout(100);
  EXPECT_EQ(locker.Lock(), 3);
  setTimeout(30'000);
  go.set();
  EXPECT_EQ(locker.Lock(), 0);
  EXPECT_EQ(holder.get().exitStatus, 0);
}

TEST_F(WindowsOSLocker, UnlocksNothingThatAnotherHolds) {
  OSLockerWindows locker;
  OtherProgram other;
  OtherProgram third;
  ASSERT_TRUE(other.lock());

  EXPECT_EQ(locker.UnLock(), 0);
  EXPECT_FALSE(third.tryLock());
}

TEST_F(WindowsOSLocker, IsGivenBackByItsDestruction) {
  OSLockerWindows first;
  OtherProgram other;
  {
    OSLockerWindows locker;
    ASSERT_EQ(locker.Lock(), 0);
    ASSERT_FALSE(other.tryLock());
  }

  EXPECT_TRUE(other.lock());
}

TEST_F(WindowsOSLocker, ThrowsWhenTheSystemCannotCreateTheSemaphore) {
  const auto create = [] {
    const test::FailingCall failing(test::SystemCall::MakeSemaphore, ERROR_NOT_ENOUGH_MEMORY);
    const OSLockerWindows locker;
  };

  EXPECT_THAT(create,
              ThrowsExactly<utils::Exception>("Could not create synchronisation sempahore"));
  EXPECT_THAT([] { static_cast<void>(os::OSLocker::getInstance()); },
              ThrowsExactly<utils::Exception>("No singleton instance found for OSLocker"));
}

// A semaphore that does as the test says, and remembers how it was used.
class FakeSemaphore : public utils::WindowsSemaphoreWrapper {
 public:
  Handle create(void* securityAttributes, std::int32_t initialCount, std::int32_t maximumCount,
                const char* name) override {
    counts = {initialCount, maximumCount};
    semaphoreName = name;
    const auto* attributes = static_cast<SECURITY_ATTRIBUTES*>(securityAttributes);
    attributesSize = attributes->nLength;
    isInheritable = attributes->bInheritHandle != FALSE;
    BOOL isPresent = FALSE;
    BOOL isDefaulted = TRUE;
    GetSecurityDescriptorDacl(attributes->lpSecurityDescriptor, &isPresent, &dacl, &isDefaulted);
    isDaclPresent = isPresent != FALSE;
    isDaclDefaulted = isDefaulted != FALSE;
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    GetSecurityDescriptorControl(attributes->lpSecurityDescriptor, &control, &revision);
    return hasHandle ? CreateEventA(nullptr, TRUE, FALSE, nullptr) : nullptr;
  }
  std::uint32_t wait(Handle /*semaphore*/, std::uint32_t milliseconds) override {
    waits.push_back(milliseconds);
    return answer;
  }
  bool release(Handle /*semaphore*/, std::int32_t count, std::int32_t* /*previousCount*/) override {
    releases.push_back(count);
    SetLastError(releaseError);
    return releaseError == 0;
  }

  bool hasHandle = true;
  std::uint32_t answer = 0;
  DWORD releaseError = 0;

  std::vector<std::int32_t> counts;
  std::string semaphoreName;
  DWORD attributesSize = 0;
  DWORD revision = 0;
  bool isInheritable = false;
  bool isDaclPresent = false;
  bool isDaclDefaulted = true;
  ACL* dacl = reinterpret_cast<ACL*>(this);
  std::vector<std::uint32_t> waits;
  std::vector<std::int32_t> releases;
};

class WindowsOSLockerCalls : public WindowsOSLocker {
 protected:
  FakeSemaphore m_semaphore;
};

TEST_F(WindowsOSLockerCalls, CreateASemaphoreOfCountOneForEveryone) {
  const OSLockerWindows locker;

  EXPECT_THAT(m_semaphore.counts, ElementsAre(1, 1));
  EXPECT_EQ(m_semaphore.semaphoreName, "Global\\RavlApplySemaphore");
  EXPECT_EQ(m_semaphore.attributesSize, sizeof(SECURITY_ATTRIBUTES));
  EXPECT_TRUE(m_semaphore.isInheritable);
  EXPECT_EQ(m_semaphore.revision, 1U);
  EXPECT_TRUE(m_semaphore.isDaclPresent);
  EXPECT_FALSE(m_semaphore.isDaclDefaulted);
  EXPECT_EQ(m_semaphore.dacl, nullptr);
}

TEST_F(WindowsOSLockerCalls, ThrowWithoutAHandle) {
  m_semaphore.hasHandle = false;

  EXPECT_THAT([] { const OSLockerWindows locker; },
              ThrowsExactly<utils::Exception>("Could not create synchronisation sempahore"));
}

TEST_F(WindowsOSLockerCalls, WaitForTheConfiguredTimeout) {
  OSLockerWindows locker;
  setTimeout(4711);
  EXPECT_EQ(locker.Lock(), 0);

  EXPECT_THAT(m_semaphore.waits, ElementsAre(4711U));
}

TEST_F(WindowsOSLockerCalls, LogAnyOtherResultOfAWait) {
  struct Row {
    std::uint32_t answer;
    const char* text;
  };
  OSLockerWindows locker;
  for (const Row& row : {Row{WAIT_FAILED, "result = -1"}, Row{WAIT_ABANDONED, "result = 128"}}) {
    m_semaphore.answer = row.answer;
    const LogCapture log;
    EXPECT_EQ(locker.Lock(), 1);
    EXPECT_THAT(log.messages(kLock),
                ElementsAre(row.text, "Some error occured when the Semaphore was locked"));
  }
}

TEST_F(WindowsOSLockerCalls, ReleaseOne) {
  OSLockerWindows locker;
  ASSERT_EQ(locker.Lock(), 0);
  EXPECT_EQ(locker.UnLock(), 0);

  EXPECT_THAT(m_semaphore.releases, ElementsAre(1));
}

TEST_F(WindowsOSLockerCalls, LogAFailedReleaseInTheWordsOfTheSystem) {
  OSLockerWindows locker;
  ASSERT_EQ(locker.Lock(), 0);
  m_semaphore.releaseError = ERROR_INVALID_HANDLE;
  const LogCapture log;

  EXPECT_EQ(locker.UnLock(), 1);
  EXPECT_THAT(
      log.records(),
      ElementsAre(IsRecordOf("Os/Windows/WindowsOSLocker", LogLevel::Debug, kUnLock,
                             testing::AllOf(testing::StartsWith("'ReleaseSemaphore' Error [6]: "),
                                            testing::EndsWith("handle")))));
  EXPECT_EQ(locker.UnLock(), 0);
}

TEST_F(WindowsOSLockerCalls, LogTheNumberAloneOfAnErrorWithoutAText) {
  OSLockerWindows locker;
  ASSERT_EQ(locker.Lock(), 0);
  m_semaphore.releaseError = 0x20000123;
  const LogCapture log;

  EXPECT_EQ(locker.UnLock(), 1);
  EXPECT_THAT(log.messages(kUnLock), ElementsAre("'ReleaseSemaphore' Error [536871203]"));
}

}  // namespace
