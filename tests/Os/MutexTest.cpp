#include <atomic>
#include <cerrno>
#include <cstddef>
#include <gmock/gmock.h>
#include <memory>
#include <thread>
#include <vector>

#include "Utils/Exception.h"
#include "Utils/Format.h"
#include "Utils/Mutex.h"
#include "tests/Os/Platform.h"
#include "tests/Os/SystemFaults.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"
#include "tests/support/VirtualSlots.h"

namespace {

using test::FailingCall;
using test::IsRecordOf;
using test::LogCapture;
using test::LogLevel;
using test::SystemCall;
using testing::ElementsAre;

std::string textAbout(const char* what, const void* mutex, int error) {
  return utils::format("%s mutex %p. Error %d", what, mutex, error);
}

// Calls without their counterpart, and on a mutex that is held: what the analysis of locks forbids.
void lockAlone(utils::Mutex& mutex) ORVEX_NO_THREAD_SAFETY_ANALYSIS {
  mutex.lock();
}
void unlockAlone(utils::Mutex& mutex) ORVEX_NO_THREAD_SAFETY_ANALYSIS {
  mutex.unlock();
}

TEST(Mutex, AdmitsOneThreadAtATime) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 2000;
  utils::Mutex mutex;
  int count = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        const utils::ScopedLock lock(mutex);
        ++count;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  EXPECT_EQ(count, kThreads * kRounds);
}

TEST(Mutex, HasNoVirtualOperationButItsDestructor) {
  struct Extended : utils::Mutex {
    virtual void extend() {}
  };
  EXPECT_EQ(test::slotOf(&Extended::extend), 2U);
}

TEST(Mutex, IsRecursiveForItsOwner) {
  const LogCapture log;
  utils::Mutex mutex;
  bool isOwned = true;
  std::thread other;
  {
    const utils::ScopedLock outer(mutex);
    lockAlone(mutex);
    unlockAlone(mutex);
    // Still held: the other thread gets in only when the outer lock is gone.
    other = std::thread([&] {
      const utils::ScopedLock lock(mutex);
      EXPECT_FALSE(isOwned);
    });
    isOwned = false;
  }
  other.join();

  EXPECT_TRUE(log.records().empty());
}

TEST(Mutex, ThrowsAndLogsWhenItCannotBeCreated) {
  alignas(utils::Mutex) std::byte place[sizeof(utils::Mutex)];
  const LogCapture log;
  const auto create = [&place] {
    const FailingCall failing(SystemCall::MakeMutex, ENOMEM);
    std::destroy_at(new (place) utils::Mutex);
  };

  const std::string text = textAbout("Could not create", place, ENOMEM);
  EXPECT_THAT(create, test::ThrowsExactly<utils::Exception>(text));
  EXPECT_THAT(
      log.records(),
      ElementsAre(IsRecordOf(test::kMutexSource, LogLevel::Error, "utils::Mutex::Mutex", text),
                  IsRecordOf("Exception", LogLevel::Error, "utils::Exception::Exception", text)));
}

TEST(Mutex, LogsThatItCannotBeClosed) {
  const LogCapture log;
  std::string text;
  {
    const FailingCall failing(SystemCall::CloseMutex, EBUSY);
    const utils::Mutex mutex;
    text = textAbout("Could not close", &mutex, EBUSY);
  }

  EXPECT_THAT(log.records(), ElementsAre(IsRecordOf(test::kMutexSource, LogLevel::Error,
                                                    "utils::Mutex::~Mutex", text)));
}

TEST(Mutex, LogsAFailedLockAndCarriesOn) {
  const LogCapture log;
  utils::Mutex mutex;
  bool isEntered = false;
  {
    const FailingCall failing(SystemCall::LockMutex, EINVAL);
    const utils::ScopedLock lock(mutex);
    isEntered = true;
    // What was never locked is not unlocked either.
    lockAlone(mutex);
  }

  EXPECT_TRUE(isEntered);
  EXPECT_THAT(log.records(),
              ElementsAre(IsRecordOf(test::kMutexSource, LogLevel::Error, "utils::Mutex::Lock",
                                     textAbout("Error locking", &mutex, EINVAL))));
}

TEST(Mutex, SaysLockingOfAFailedUnlock) {
  const LogCapture log;
  utils::Mutex mutex;
  {
    const utils::ScopedLock lock(mutex);
    const FailingCall failing(SystemCall::UnlockMutex, EPERM);
    unlockAlone(mutex);
  }

  EXPECT_THAT(log.records(),
              ElementsAre(IsRecordOf(test::kMutexSource, LogLevel::Error, "utils::Mutex::Unlock",
                                     textAbout("Error locking", &mutex, EPERM))));
}

TEST(Mutex, FailsToUnlockWhatWasNotLocked) {
#ifdef QUORVEL_TEST_THREAD_SANITIZER
  GTEST_SKIP() << "ThreadSanitizer ends a program that does so";
#endif
  const LogCapture log;
  utils::Mutex mutex;
  unlockAlone(mutex);

  EXPECT_THAT(log.records(),
              ElementsAre(IsRecordOf(test::kMutexSource, LogLevel::Error, "utils::Mutex::Unlock",
                                     textAbout("Error locking", &mutex, test::kNotOwnerError))));
  { const utils::ScopedLock lock(mutex); }
  EXPECT_EQ(log.records().size(), 1U);
}

}  // namespace
