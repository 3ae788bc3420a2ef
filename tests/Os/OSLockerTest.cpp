// The flash lock's own rules, over a semaphore that does as the test says.

#include <cerrno>
#include <chrono>
#include <functional>
#include <future>
#include <gmock/gmock.h>
#include <new>
#include <optional>

#include "Os/OSLocker.h"
#include "Os/QuorvelConfig.h"
#include "Utils/Exception.h"
#include "Utils/Format.h"
#include "tests/Os/Platform.h"
#include "tests/Os/SystemFaults.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Regex.h"
#include "tests/support/Settings.h"
#include "tests/support/Throws.h"
#include "tests/support/VirtualSlots.h"

namespace {

using os::OSLocker;
using test::HasRecordOf;
using test::IsRecordOf;
using test::LogCapture;
using test::LogLevel;
using test::ThrowsExactly;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kLock = "os::OSLocker::Lock";
constexpr const char* kTimeout =
    "Timeout occured when the Semaphore was locked. Other application uses Fennelbrook SDK at this "
    "moment";
constexpr const char* kUnLock = "os::OSLocker::UnLock";

class FakeLocker : public OSLocker {
 public:
  using OSLocker::noteWait;
  using OSLocker::SystemError;
  using OSLocker::WaitResult;

  bool exists = true;
  WaitResult answer = WaitResult::Signalled;
  std::optional<SystemError> releaseError;

  std::vector<std::uint32_t> waits;  // their limits in milliseconds
  int releases = 0;
  std::function<void()> whileWaiting = [] {};

 protected:
  [[nodiscard]] bool hasSemaphore() const override { return exists; }
  [[nodiscard]] WaitResult waitForSemaphore(std::uint32_t milliseconds) override {
    waits.push_back(milliseconds);
    whileWaiting();
    return answer;
  }
  [[nodiscard]] std::optional<SystemError> releaseSemaphore() override {
    ++releases;
    return releaseError;
  }
};

class OSLockerRules : public testing::Test {
 protected:
  test::Settings m_settings;
  utils::QuorvelConfig m_config{m_settings.path()};
  FakeLocker m_locker;
};

TEST_F(OSLockerRules, LogsItsCreation) {
  const LogCapture log;
  const FakeLocker locker;

  EXPECT_THAT(log.records(),
              ElementsAre(IsRecordOf("Utils/Singleton", LogLevel::Debug,
                                     "utils::Singleton<class os::OSLocker>::Singleton",
                                     "New singleton instance for OSLocker"),
                          IsRecordOf(test::kLockerSource, LogLevel::Debug, "os::OSLocker::OSLocker",
                                     "Create new OSLocker")));
}

TEST_F(OSLockerRules, LocksAndSaysSo) {
  const LogCapture log;

  EXPECT_EQ(m_locker.Lock(), 0);
  EXPECT_THAT(log.messages(kLock), ElementsAre("result = 0", "Semaphore is locked"));
  EXPECT_THAT(log.records(),
              HasRecordOf(test::kLockerSource, LogLevel::Debug, kLock, "Semaphore is locked"));
}

TEST_F(OSLockerRules, WaitsForTheDefaultTimeoutUnlessConfigured) {
  EXPECT_EQ(m_locker.Lock(), 0);
  EXPECT_EQ(m_locker.UnLock(), 0);
  m_settings.write({{"Timeout", 250U}});
  EXPECT_EQ(m_locker.Lock(), 0);

  EXPECT_THAT(m_locker.waits, ElementsAre(300'000U, 250U));
}

TEST_F(OSLockerRules, AnswersTwoWhileItIsHeldWithoutWaiting) {
  ASSERT_EQ(m_locker.Lock(), 0);
  const LogCapture log;

  EXPECT_EQ(m_locker.Lock(), 2);
  EXPECT_THAT(log.records(), ElementsAre(IsRecordOf(test::kLockerSource, LogLevel::Debug, kLock,
                                                    "Locker is in use at this moment")));
  EXPECT_EQ(m_locker.waits.size(), 1U);
  EXPECT_EQ(m_locker.releases, 0);
}

TEST_F(OSLockerRules, IsUnlockedByNobodyWhileSomebodyWaitsForIt) {
  std::future<std::int32_t> unlocked;
  m_locker.whileWaiting = [&] {
    unlocked = std::async(std::launch::async, [this] { return m_locker.UnLock(); });
    EXPECT_EQ(unlocked.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
  };
  EXPECT_EQ(m_locker.Lock(), 0);
  EXPECT_EQ(unlocked.get(), 0);
  EXPECT_EQ(m_locker.releases, 1);
}

TEST_F(OSLockerRules, AnswersThreeWhenTheWaitTimesOut) {
  m_locker.answer = FakeLocker::WaitResult::TimedOut;
  const LogCapture log;

  EXPECT_EQ(m_locker.Lock(), 3);
  EXPECT_THAT(log.messages(kLock),
              ElementsAre("result = 258", kTimeout, "The flash lock is held by another program"));
}

TEST_F(OSLockerRules, TellsWhomItWaitsFor) {
  const auto now = std::chrono::steady_clock::now();
  m_locker.whileWaiting = [&] {
    m_locker.noteWait(std::nullopt);
    EXPECT_EQ(OSLocker::describeAwaited(), "another program");
    m_locker.noteWait(os::LockHolder{"tool", 4711, "root", now - std::chrono::seconds(12)});
    EXPECT_THAT(OSLocker::describeAwaited(),
                test::MatchesRegex("tool, process 4711, user root, for 00:1[2-9]"));
    EXPECT_EQ(OSLocker::describeTimeout(), "");
  };
  EXPECT_EQ(OSLocker::describeAwaited(), "");
  EXPECT_EQ(m_locker.Lock(), 0);
  EXPECT_EQ(OSLocker::describeAwaited(), "");
  EXPECT_EQ(OSLocker::describeTimeout(), "");
}

TEST_F(OSLockerRules, WaitsForNobodyAnyMoreWhenItsWaitIsBrokenOff) {
  m_locker.whileWaiting = [this] {
    m_locker.noteWait(std::nullopt);
    throw std::bad_alloc();
  };
  EXPECT_THROW(static_cast<void>(m_locker.Lock()), std::bad_alloc);
  EXPECT_EQ(OSLocker::describeAwaited(), "");
}

TEST_F(OSLockerRules, TellsWhomItWaitedForInVainUntilItLocksAgain) {
  m_locker.answer = FakeLocker::WaitResult::TimedOut;
  m_locker.whileWaiting = [this] {
    m_locker.noteWait(os::LockHolder{"tool", 4711, "root", std::chrono::steady_clock::now()});
  };
  const LogCapture log;
  EXPECT_EQ(m_locker.Lock(), 3);

  const std::string holder = "tool, process 4711, user root, for 00:0[0-9]";
  EXPECT_THAT(OSLocker::describeTimeout(), test::MatchesRegex(holder));
  EXPECT_EQ(OSLocker::describeAwaited(), "");
  EXPECT_THAT(log.records(),
              HasRecordOf(test::kLockerSource, LogLevel::Error, kLock,
                          test::MatchesRegex("The flash lock is held by " + holder)));
  m_locker.answer = FakeLocker::WaitResult::Signalled;
  EXPECT_EQ(m_locker.Lock(), 0);
  EXPECT_EQ(OSLocker::describeTimeout(), "");
}

TEST_F(OSLockerRules, AnswersThreeWithoutMemoryForWhomItWaitedFor) {
#ifdef QUORVEL_TEST_THREAD_SANITIZER
  GTEST_SKIP() << "ThreadSanitizer lets no program have an operator new of its own";
#endif
  std::optional<test::FailingCall> noMemory;
  m_locker.answer = FakeLocker::WaitResult::TimedOut;
  m_locker.whileWaiting = [&] {
    m_locker.noteWait(os::LockHolder{"tool", 4711, "root", std::chrono::steady_clock::now()});
    noMemory.emplace(test::SystemCall::Allocate, ENOMEM);
  };

  EXPECT_EQ(m_locker.Lock(), 3);
  noMemory.reset();
  EXPECT_EQ(OSLocker::describeTimeout(), "another program");
  EXPECT_EQ(OSLocker::describeAwaited(), "");
}

TEST_F(OSLockerRules, IsGivenUpByOneWhoWaits) {
  m_locker.answer = FakeLocker::WaitResult::TimedOut;
  m_locker.whileWaiting = [this] {
    m_locker.noteWait(os::LockHolder{"tool", 4711, "root", std::chrono::steady_clock::now()});
    EXPECT_TRUE(OSLocker::giveUp());
  };
  const LogCapture log;

  EXPECT_EQ(m_locker.Lock(), 3);
  EXPECT_THAT(log.messages(kLock),
              ElementsAre("result = 258", kTimeout, "This process has given the flash lock up"));
}

TEST_F(OSLockerRules, IsNotHadOnceItIsGivenUp) {
  m_locker.whileWaiting = [] { EXPECT_TRUE(OSLocker::giveUp()); };
  EXPECT_EQ(m_locker.Lock(), 3);
  EXPECT_EQ(m_locker.releases, 1);
  EXPECT_EQ(m_locker.Lock(), 3);
  EXPECT_EQ(m_locker.releases, 2);
  EXPECT_EQ(m_locker.UnLock(), 0);
  EXPECT_EQ(m_locker.releases, 2);
}

TEST_F(OSLockerRules, IsNotGivenUpByOneWhoHasHadIt) {
  ASSERT_EQ(m_locker.Lock(), 0);
  EXPECT_FALSE(OSLocker::giveUp());
  ASSERT_EQ(m_locker.UnLock(), 0);
  EXPECT_FALSE(OSLocker::giveUp());
  EXPECT_EQ(m_locker.Lock(), 0);
}

TEST(OSLockerOfNobody, IsNotGivenUp) {
  EXPECT_FALSE(OSLocker::giveUp());
}

TEST(OSLockerOperations, KeepTheOrderOfTheVirtualOnes) {
  EXPECT_EQ(test::slotOf(&OSLocker::Lock), 2U);
  EXPECT_EQ(test::slotOf(&OSLocker::UnLock), 3U);
}

TEST(OSLockerOfNobody, TellsOfNoWait) {
  EXPECT_EQ(OSLocker::describeFailure(), "");
  EXPECT_EQ(OSLocker::describeAwaited(), "");
  EXPECT_EQ(OSLocker::describeTimeout(), "");
}

TEST_F(OSLockerRules, AnswersOneWhenTheWaitFails) {
  m_locker.answer = FakeLocker::WaitResult::Failed;
  const LogCapture log;

  EXPECT_EQ(m_locker.Lock(), 1);
  EXPECT_THAT(log.messages(kLock),
              ElementsAre("result = -1", "Some error occured when the Semaphore was locked"));
}

TEST_F(OSLockerRules, IsNotHeldAfterAFailedWait) {
  m_locker.answer = FakeLocker::WaitResult::TimedOut;
  ASSERT_EQ(m_locker.Lock(), 3);
  EXPECT_EQ(m_locker.UnLock(), 0);
  EXPECT_EQ(m_locker.releases, 0);

  m_locker.answer = FakeLocker::WaitResult::Signalled;
  EXPECT_EQ(m_locker.Lock(), 0);
}

TEST_F(OSLockerRules, AnswersOneWithoutASemaphore) {
  m_locker.exists = false;
  const LogCapture log;

  EXPECT_EQ(m_locker.Lock(), 1);
  EXPECT_EQ(m_locker.UnLock(), 1);
  EXPECT_THAT(m_locker.waits, IsEmpty());
  EXPECT_EQ(m_locker.releases, 0);
  EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(OSLockerRules, UnlocksNothingThatIsNotHeld) {
  EXPECT_EQ(m_locker.UnLock(), 0);
  EXPECT_EQ(m_locker.releases, 0);
}

TEST_F(OSLockerRules, LocksAgainAfterUnlocking) {
  EXPECT_EQ(m_locker.Lock(), 0);
  EXPECT_EQ(m_locker.UnLock(), 0);
  EXPECT_EQ(m_locker.Lock(), 0);
  EXPECT_EQ(m_locker.releases, 1);
}

TEST_F(OSLockerRules, IsNotHeldAfterAReleaseThatFailed) {
  ASSERT_EQ(m_locker.Lock(), 0);
  m_locker.releaseError = FakeLocker::SystemError{22, "Invalid 100% argument"};
  const LogCapture log;

  EXPECT_EQ(m_locker.UnLock(), 1);
  EXPECT_THAT(log.records(),
              ElementsAre(IsRecordOf(test::kLockerSource, LogLevel::Debug, kUnLock,
                                     "'ReleaseSemaphore' Error [22]: Invalid 100% argument")));
  EXPECT_EQ(m_locker.UnLock(), 0);
  EXPECT_EQ(m_locker.Lock(), 0);
}

TEST_F(OSLockerRules, LogsTheNumberAloneOfAnErrorWithoutAText) {
  ASSERT_EQ(m_locker.Lock(), 0);
  m_locker.releaseError = FakeLocker::SystemError{4711, ""};
  const LogCapture log;

  EXPECT_EQ(m_locker.UnLock(), 1);
  EXPECT_THAT(log.messages(kUnLock), ElementsAre("'ReleaseSemaphore' Error [4711]"));
}

TEST_F(OSLockerRules, IsHeldForTheSpanOfABlock) {
  const LogCapture log;
  {
    const OSLocker::AutoOSLocker lock;
    EXPECT_EQ(m_locker.Lock(), 2);
  }

  EXPECT_EQ(m_locker.releases, 1);
  EXPECT_EQ(m_locker.Lock(), 0);
  EXPECT_THAT(
      log.records(),
      testing::IsSupersetOf(
          {IsRecordOf(test::kLockerSource, LogLevel::Debug,
                      "os::OSLocker::AutoOSLocker::AutoOSLocker", "autolocking semaphore"),
           IsRecordOf(test::kLockerSource, LogLevel::Debug,
                      "os::OSLocker::AutoOSLocker::~AutoOSLocker", "autoreleasing semaphore")}));
}

TEST_F(OSLockerRules, ThrowsTheResultOfABlockThatCannotHaveIt) {
  const auto lock = [] { const OSLocker::AutoOSLocker locked; };
  m_locker.answer = FakeLocker::WaitResult::TimedOut;
  EXPECT_THAT(lock, ThrowsExactly<utils::Exception>("Locking access to the Fennelbrook returns 3"));
  m_locker.answer = FakeLocker::WaitResult::Failed;
  EXPECT_THAT(lock, ThrowsExactly<utils::Exception>("Locking access to the Fennelbrook returns 1"));
}

TEST_F(OSLockerRules, StaysHeldByTheOuterOfTwoBlocks) {
  const OSLocker::AutoOSLocker outer;

  EXPECT_THAT([] { const OSLocker::AutoOSLocker inner; },
              ThrowsExactly<utils::Exception>("Locking access to the Fennelbrook returns 2"));
  EXPECT_EQ(m_locker.releases, 0);
  EXPECT_EQ(m_locker.Lock(), 2);
}

TEST(OSLockerSingleton, IsMissedWhenNoneIsRegistered) {
  const auto throwsIt = ThrowsExactly<utils::Exception>("No singleton instance found for OSLocker");

  EXPECT_THAT([] { static_cast<void>(OSLocker::getInstance()); }, throwsIt);
  EXPECT_THAT([] { const OSLocker::AutoOSLocker lock; }, throwsIt);
}

TEST(OSLockerSingleton, IsTheRegisteredOne) {
  FakeLocker locker;
  const LogCapture log;

  EXPECT_EQ(OSLocker::getInstance(), &locker);
  EXPECT_THAT(
      log.records(),
      ElementsAre(IsRecordOf(
          "Utils/Singleton", LogLevel::Debug, "utils::Singleton<class os::OSLocker>::getInstance",
          utils::format("Instance of OSLocker (#%p)", static_cast<void*>(&locker)))));
}

}  // namespace
