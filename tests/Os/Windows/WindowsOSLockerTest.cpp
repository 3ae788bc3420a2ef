// The flash lock on the machine's semaphore, with a second handle in the part of another program.

#include <cerrno>
#include <chrono>
#include <future>
#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <vector>
#include <windows.h>

#include "Os/QuorvelConfig.h"
#include "Os/Windows/SystemText.h"
#include "Os/Windows/WindowsOSLocker.h"
#include "Os/Windows/WindowsSemaphoreWrapper.h"
#include "Utils/Exception.h"
#include "platform/Windows/Handle.h"
#include "tests/Os/SystemFaults.h"
#include "tests/Os/Windows/NamedEvent.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Programs.h"
#include "tests/support/Regex.h"
#include "tests/support/Settings.h"
#include "tests/support/Throws.h"
#include "tests/support/WaitUntil.h"
#include "tests/support/Windows/ImportPatch.h"
#include "tests/support/Windows/OtherProgram.h"

namespace {

using os::OSLockerWindows;
using test::IsRecordOf;
using test::LogCapture;
using test::LogLevel;
using test::OtherProgram;
using test::ThrowsExactly;
using testing::ElementsAre;
using Clock = std::chrono::steady_clock;

constexpr const char* kSemaphoreName = "Global\\RavlApplySemaphore";
constexpr const char* kLock = "os::OSLocker::Lock";
constexpr const char* kUnLock = "os::OSLocker::UnLock";

// By how much the system may end a wait too early: one tick of its clock.
constexpr std::chrono::milliseconds kTick{16};

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
  const platform::Handle semaphore(OpenSemaphoreA(SEMAPHORE_ALL_ACCESS, FALSE, kSemaphoreName));
  ASSERT_TRUE(semaphore.isOpen());

  EXPECT_EQ(ReleaseSemaphore(semaphore.get(), 2, nullptr), FALSE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_TOO_MANY_POSTS));
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
  EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(kTimeout) - kTick);
  EXPECT_THAT(log.messages(kLock),
              ElementsAre("result = 258",
                          "Timeout occured when the Semaphore was locked. Other application uses "
                          "Fennelbrook SDK at this moment",
                          "The flash lock is held by another program; its semaphore is open in "
                          "this program, process " +
                              std::to_string(GetCurrentProcessId())));
  EXPECT_THAT([] { const os::OSLocker::AutoOSLocker lock; },
              ThrowsExactly<utils::Exception>("Locking access to the Fennelbrook returns 3"));
}

TEST_F(WindowsOSLocker, IsHadOnceAnotherProcessHasGivenItBack) {
  OSLockerWindows locker;
  test::NamedEvent ready("ready");
  test::NamedEvent go("go");
  auto holder = std::async(std::launch::async, [&] {
    return test::runProgram(test::programBeside("semaphore_holder"), {ready.name(), go.name()});
  });
  ASSERT_TRUE(ready.await());

  setTimeout(100);
  EXPECT_EQ(locker.Lock(), 3);
  EXPECT_THAT(os::OSLocker::describeTimeout(),
              test::MatchesRegex("another program; its semaphore is open in "
                                 "semaphore_holder.exe, process [0-9]+; this program, "
                                 "process [0-9]+"));
  setTimeout(30'000);
  go.set();
  EXPECT_EQ(locker.Lock(), 0);
  EXPECT_EQ(holder.get().exitStatus, 0);
}

HANDLE WINAPI openNone(DWORD /*access*/, BOOL /*isInherited*/, DWORD /*process*/) {
  SetLastError(ERROR_ACCESS_DENIED);
  return nullptr;
}

TEST_F(WindowsOSLocker, SaysThatOthersMayHaveItWhomTheUserIsNotShown) {
  OSLockerWindows locker;
  test::NamedEvent ready("hidden-ready");
  test::NamedEvent go("hidden-go");
  auto holder = std::async(std::launch::async, [&] {
    return test::runProgram(test::programBeside("semaphore_holder"), {ready.name(), go.name()});
  });
  ASSERT_TRUE(ready.await());
  setTimeout(100);
  {
    const test::ImportPatch patch("OrvexCimCore.dll", "OpenProcess", &openNone);
    EXPECT_EQ(locker.Lock(), 3);
  }
  EXPECT_EQ(os::OSLocker::describeTimeout(),
            "another program; its semaphore is open in this program, process " +
                std::to_string(GetCurrentProcessId()) +
                "; perhaps others, which this user is not shown");
  go.set();
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

  EXPECT_THAT(create, ThrowsExactly<os::LockFault>("Could not create synchronisation sempahore"));
  EXPECT_THAT([] { static_cast<void>(os::OSLocker::getInstance()); },
              ThrowsExactly<utils::Exception>("No singleton instance found for OSLocker"));
}

template <class... Arguments>
BOOL WINAPI refuse(Arguments...) {
  SetLastError(ERROR_UNKNOWN_REVISION);
  return FALSE;
}

TEST_F(WindowsOSLocker, ThrowsWhenItCannotBeMadeForEveryone) {
  const auto reasonOf = [] {
    try {
      const OSLockerWindows locker;
    } catch (const os::LockFault& fault) {
      return fault.reason();
    }
    return std::string("no fault");
  };
  constexpr const char* kLibrary = "OrvexCimCore.dll";
  {
    const test::ImportPatch patch(kLibrary, "InitializeSecurityDescriptor",
                                  &refuse<PSECURITY_DESCRIPTOR, DWORD>);
    EXPECT_EQ(reasonOf(), os::getSystemText(ERROR_UNKNOWN_REVISION));
  }
  {
    const test::ImportPatch patch(kLibrary, "SetSecurityDescriptorDacl",
                                  &refuse<PSECURITY_DESCRIPTOR, BOOL, PACL, BOOL>);
    EXPECT_EQ(reasonOf(), os::getSystemText(ERROR_UNKNOWN_REVISION));
  }
  EXPECT_EQ(reasonOf(), "no fault");
}

// Makes the semaphore under a name of the test's own, so that nobody has made it before.
class FreshSemaphore : public utils::WindowsSemaphoreWrapper {
 public:
  Handle create(void* securityAttributes, std::int32_t initialCount, std::int32_t maximumCount,
                const char* /*name*/) override {
    const std::string name = "Global\\QuorvelTest-" + std::to_string(GetCurrentProcessId());
    SetLastError(ERROR_SUCCESS);
    handle = WindowsSemaphoreWrapper::create(securityAttributes, initialCount, maximumCount,
                                             name.c_str());
    isFresh = GetLastError() != ERROR_ALREADY_EXISTS;
    return handle;
  }

  // Returns the rights that the system keeps for the semaphore, a SECURITY_DESCRIPTOR.
  [[nodiscard]] std::vector<unsigned char> rights() const {
    DWORD size = 0;
    GetKernelObjectSecurity(handle, DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<unsigned char> descriptor(size);
    EXPECT_NE(
        GetKernelObjectSecurity(handle, DACL_SECURITY_INFORMATION, descriptor.data(), size, &size),
        FALSE);
    return descriptor;
  }
  [[nodiscard]] bool isInheritable() const {
    DWORD flags = 0;
    EXPECT_NE(GetHandleInformation(handle, &flags), FALSE);
    return (flags & HANDLE_FLAG_INHERIT) != 0;
  }

  Handle handle = nullptr;
  bool isFresh = false;
};

TEST_F(WindowsOSLocker, IsOpenToEveryoneAndInheritedInTheSystemsEyes) {
  const FreshSemaphore semaphore;
  const OSLockerWindows locker;
  ASSERT_TRUE(semaphore.isFresh);
  std::vector<unsigned char> rights = semaphore.rights();
  BOOL isDaclPresent = FALSE;
  BOOL isDaclDefaulted = TRUE;
  ACL no{};
  ACL* dacl = &no;

  EXPECT_NE(GetSecurityDescriptorDacl(rights.data(), &isDaclPresent, &dacl, &isDaclDefaulted),
            FALSE);
  EXPECT_NE(isDaclPresent, FALSE);
  EXPECT_EQ(dacl, nullptr);
  EXPECT_EQ(isDaclDefaulted, FALSE);
  EXPECT_TRUE(semaphore.isInheritable());
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
    if (isMemoryOut) {
      m_noMemory.emplace(test::SystemCall::Allocate, ENOMEM);
    }
    return answer;
  }
  bool release(Handle /*semaphore*/, std::int32_t count, std::int32_t* /*previousCount*/) override {
    releases.push_back(count);
    SetLastError(releaseError);
    return releaseError == 0;
  }

  bool hasHandle = true;
  bool isMemoryOut = false;  // with the end of a wait, once
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

 private:
  std::optional<test::FailingCall> m_noMemory;
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

TEST_F(WindowsOSLockerCalls, AreNoneOfASubstitute) {
  m_semaphore.hasHandle = false;
  const auto locker = os::createOSLockerOrSubstitute();

  EXPECT_EQ(os::OSLocker::getInstance(), locker.get());
  EXPECT_EQ(locker->Lock(), 1);
  EXPECT_EQ(locker->UnLock(), 1);
  EXPECT_THAT(m_semaphore.waits, testing::IsEmpty());
}

TEST_F(WindowsOSLockerCalls, ThrowWithoutAHandle) {
  m_semaphore.hasHandle = false;

  EXPECT_THAT([] { const OSLockerWindows locker; },
              ThrowsExactly<os::LockFault>("Could not create synchronisation sempahore"));
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

TEST_F(WindowsOSLockerCalls, TimeOutWithoutMemoryForTheOwnersOfTheSemaphore) {
  OSLockerWindows locker;
  m_semaphore.answer = WAIT_TIMEOUT;
  m_semaphore.isMemoryOut = true;

  EXPECT_EQ(locker.Lock(), 3);
  EXPECT_EQ(os::OSLocker::describeTimeout(), "another program");
  EXPECT_EQ(os::OSLocker::describeAwaited(), "");
  EXPECT_EQ(locker.UnLock(), 0);
  EXPECT_THAT(m_semaphore.releases, testing::IsEmpty());

  m_semaphore.answer = WAIT_OBJECT_0;
  EXPECT_EQ(locker.Lock(), 0);
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
                                            testing::EndsWith("handle.")))));
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
