// The flash lock between real processes. Each test has a semaphore of its own.

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <future>
#include <gmock/gmock.h>
#include <memory>
#include <new>
#include <pthread.h>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/sem.h>
#include <system_error>
#include <unistd.h>
#include <vector>

#include "Os/Posix/PosixOSLocker.h"
#include "Os/QuorvelConfig.h"
#include "Utils/Exception.h"
#include "Utils/Format.h"
#include "tests/Os/SystemFaults.h"
#include "tests/support/FakeClock.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Posix/ChildProcess.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"
#include "tests/support/WaitUntil.h"

namespace {

using os::OSLockerPosix;
using test::ChildProcess;
using test::LogCapture;
using test::LogLevel;
using test::ThrowsExactly;
using testing::ElementsAre;
using Clock = std::chrono::steady_clock;

constexpr const char* kLock = "os::OSLocker::Lock";
constexpr int kHasNoLock = 9;

key_t freshKey() {
  static int number = 0;
  return static_cast<key_t>(0x54000000 | ((getpid() & 0x3FFFF) << 6) | (number++ & 0x3F));
}

// Marks that a child and its parent pass each other.
constexpr char kReady = 'r';
constexpr char kGo = 'g';

class PosixOSLocker : public testing::Test {
 protected:
  PosixOSLocker() { setTimeout(30'000); }
  ~PosixOSLocker() override { removeSemaphore(); }

  void setTimeout(int milliseconds) {
    m_directory.write("agent.conf", "Timeout = " + std::to_string(milliseconds) + "\n");
  }

  // What the kernel holds under the test's key.
  [[nodiscard]] int semaphore() const { return semget(m_key, 1, 0); }
  [[nodiscard]] int count() const { return semctl(semaphore(), 0, GETVAL); }
  [[nodiscard]] int waiters() const { return semctl(semaphore(), 0, GETNCNT); }
  void removeSemaphore() const { semctl(semaphore(), 0, IPC_RMID); }

  [[nodiscard]] ChildProcess::Body holder() const {
    return [key = m_key](ChildProcess::Link& parent) {
      OSLockerPosix locker(key);
      if (locker.Lock() != 0) {
        return kHasNoLock;
      }
      parent.tell(kReady);
      static_cast<void>(parent.await(kGo));
      return 0;
    };
  }
  // A second process that holds the lock until it is told or killed.
  std::unique_ptr<ChildProcess> startHolder() {
    auto child = std::make_unique<ChildProcess>(holder());
    EXPECT_TRUE(child->link().await(kReady));
    return child;
  }

  // Takes the lock on a thread of its own, and returns once that waits for it.
  std::future<std::int32_t> lockLater(OSLockerPosix& locker) {
    auto result = std::async(std::launch::async, [&locker] { return locker.Lock(); });
    EXPECT_TRUE(test::waitUntil([this] { return waiters() == 1; }));
    return result;
  }

  const key_t m_key = freshKey();
  test::TempDirectory m_directory;
  utils::QuorvelConfig m_config{m_directory.path() / "agent.conf"};
};

TEST_F(PosixOSLocker, IsSharedUnderAKeyThatAllProgramsKnow) {
  EXPECT_EQ(OSLockerPosix::kSharedKey, 0x5241564C);
}

TEST_F(PosixOSLocker, MakesASemaphoreOfCountOneForEveryone) {
  const OSLockerPosix locker(m_key);
  semid_ds status{};

  ASSERT_EQ(semctl(semaphore(), 0, IPC_STAT, &status), 0);
  EXPECT_EQ(status.sem_perm.mode & 0777, 0666);
  EXPECT_EQ(status.sem_nsems, 1U);
  EXPECT_EQ(count(), 1);
}

TEST_F(PosixOSLocker, TakesTheSemaphoreAndGivesItBack) {
  OSLockerPosix locker(m_key);

  EXPECT_EQ(locker.Lock(), 0);
  EXPECT_EQ(count(), 0);
  EXPECT_EQ(locker.UnLock(), 0);
  EXPECT_EQ(count(), 1);
  EXPECT_EQ(locker.Lock(), 0);
  EXPECT_EQ(count(), 0);
}

TEST_F(PosixOSLocker, KeepsTheOuterOfTwoLocks) {
  OSLockerPosix locker(m_key);
  const os::OSLocker::AutoOSLocker outer;

  EXPECT_EQ(locker.Lock(), 2);
  EXPECT_THAT([] { const os::OSLocker::AutoOSLocker inner; },
              ThrowsExactly<utils::Exception>("Locking access to the Fennelbrook returns 2"));
  EXPECT_EQ(count(), 0);
}

TEST_F(PosixOSLocker, UnlocksNothingThatAnotherHolds) {
  const auto other = startHolder();
  OSLockerPosix locker(m_key);

  EXPECT_EQ(locker.UnLock(), 0);
  EXPECT_EQ(count(), 0);
}

TEST_F(PosixOSLocker, GivesUpAfterTheTimeoutWhileAnotherProcessHoldsIt) {
  constexpr int kTimeout = 150;
  const auto other = startHolder();
  setTimeout(kTimeout);
  OSLockerPosix locker(m_key);
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
  EXPECT_EQ(count(), 0);
}

TEST_F(PosixOSLocker, IsHadAfterItsHolderWasKilled) {
  const auto other = startHolder();
  OSLockerPosix locker(m_key);
  other->kill();

  EXPECT_EQ(locker.Lock(), 0);
}

TEST_F(PosixOSLocker, IsHadByAWaiterWhoseHolderIsKilled) {
  const auto other = startHolder();
  OSLockerPosix locker(m_key);
  auto result = lockLater(locker);
  other->kill();

  EXPECT_EQ(result.get(), 0);
  EXPECT_EQ(count(), 0);
}

TEST_F(PosixOSLocker, IsHadByAWaiterWhoseHolderEndsWithoutUnlocking) {
  const auto other = startHolder();
  OSLockerPosix locker(m_key);
  auto result = lockLater(locker);
  other->link().tell(kGo);

  EXPECT_EQ(result.get(), 0);
  EXPECT_EQ(other->wait(), 0);
}

TEST_F(PosixOSLocker, IsWaitedForThroughSignals) {
  struct sigaction action {};
  action.sa_handler = [](int) {};
  ASSERT_EQ(sigaction(SIGUSR1, &action, nullptr), 0);
  const auto other = startHolder();
  OSLockerPosix locker(m_key);
  std::atomic<pthread_t> waiter{};
  auto result = std::async(std::launch::async, [&] {
    waiter = pthread_self();
    return locker.Lock();
  });
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(test::waitUntil([this] { return waiters() == 1; }));
    pthread_kill(waiter, SIGUSR1);
  }
  other->kill();

  EXPECT_EQ(result.get(), 0);
}

TEST_F(PosixOSLocker, IsGivenBackByItsDestruction) {
  {
    OSLockerPosix locker(m_key);
    ASSERT_EQ(locker.Lock(), 0);
  }

  EXPECT_EQ(count(), 1);
}

TEST_F(PosixOSLocker, MayBeTakenAndGivenBackOnDifferentThreads) {
  OSLockerPosix locker(m_key);

  EXPECT_EQ(std::async(std::launch::async, [&] { return locker.Lock(); }).get(), 0);
  EXPECT_EQ(count(), 0);
  EXPECT_EQ(locker.UnLock(), 0);
  EXPECT_EQ(count(), 1);
}

// What the children of a race share.
struct Arena {
  std::atomic<int> inside{0};
  std::atomic<int> overlaps{0};
  std::atomic<int> turns{0};
};

TEST_F(PosixOSLocker, IsCreatedByManyProcessesAtOnceWithCountOne) {
  constexpr int kProcesses = 12;
  constexpr int kTurns = 20;
  void* memory =
      mmap(nullptr, sizeof(Arena), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  auto* arena = new (memory) Arena;
  std::vector<std::unique_ptr<ChildProcess>> children;
  for (int i = 0; i < kProcesses; ++i) {
    children.push_back(std::make_unique<ChildProcess>([this, arena](ChildProcess::Link& parent) {
      parent.tell(kReady);
      if (!parent.await(kGo)) {
        return 1;
      }
      OSLockerPosix locker(m_key);
      for (int turn = 0; turn < kTurns; ++turn) {
        if (locker.Lock() != 0) {
          return 2;
        }
        arena->overlaps += arena->inside.fetch_add(1) != 0 ? 1 : 0;
        ++arena->turns;
        arena->inside.fetch_sub(1);
        if (locker.UnLock() != 0) {
          return 3;
        }
      }
      return 0;
    }));
  }
  for (const auto& child : children) {
    EXPECT_TRUE(child->link().await(kReady));
  }
  for (const auto& child : children) {
    child->link().tell(kGo);
  }
  for (const auto& child : children) {
    EXPECT_EQ(child->wait(), 0);
  }

  EXPECT_EQ(arena->turns, kProcesses * kTurns);
  EXPECT_EQ(arena->overlaps, 0);
  EXPECT_EQ(count(), 1);
  munmap(memory, sizeof(Arena));
}

TEST_F(PosixOSLocker, TakesOverFromACreatorThatDiedBeforeSettingItUp) {
  ASSERT_GE(semget(m_key, 1, IPC_CREAT | IPC_EXCL | 0666), 0);
  ASSERT_EQ(count(), 0);
  test::FakeClock clock;
  OSLockerPosix locker(m_key, clock);

  EXPECT_THAT(clock.sleeps(), ElementsAre(testing::Pair(std::chrono::milliseconds(1), 1000)));
  EXPECT_EQ(count(), 1);
  EXPECT_EQ(locker.Lock(), 0);
}

TEST_F(PosixOSLocker, WaitsForACreatorThatIsSlow) {
  const int made = semget(m_key, 1, IPC_CREAT | IPC_EXCL | 0666);
  ASSERT_GE(made, 0);
  test::FakeClock clock;
  clock.afterEachSleep([made](int number) {
    sembuf setUp{0, 1, 0};
    if (number == 7) {
      EXPECT_EQ(semop(made, &setUp, 1), 0);
    }
  });
  OSLockerPosix locker(m_key, clock);

  EXPECT_EQ(clock.slept(), std::chrono::milliseconds(7));
  EXPECT_EQ(locker.Lock(), 0);
  EXPECT_EQ(locker.UnLock(), 0);
  EXPECT_EQ(count(), 1);
}

TEST_F(PosixOSLocker, DoesNotTakeOneThatIsHeldForOneThatIsNotSetUp) {
  const auto other = startHolder();
  const OSLockerPosix locker(m_key);

  EXPECT_EQ(count(), 0);
}

TEST_F(PosixOSLocker, IsMadeAgainWhenItsSemaphoreWasRemoved) {
  OSLockerPosix locker(m_key);
  removeSemaphore();

  EXPECT_EQ(locker.Lock(), 0);
  EXPECT_EQ(count(), 0);
  EXPECT_EQ(locker.UnLock(), 0);
  EXPECT_EQ(count(), 1);
}

TEST_F(PosixOSLocker, MeetsOthersAtANewSemaphoreAfterARemoval) {
  OSLockerPosix locker(m_key);
  removeSemaphore();
  const auto other = startHolder();
  setTimeout(50);

  EXPECT_EQ(locker.Lock(), 3);
}

TEST_F(PosixOSLocker, IsHadByAWaiterWhoseSemaphoreIsRemoved) {
  const auto other = startHolder();
  OSLockerPosix locker(m_key);
  auto result = lockLater(locker);
  removeSemaphore();

  EXPECT_EQ(result.get(), 0);
  EXPECT_EQ(count(), 0);
}

TEST_F(PosixOSLocker, AnswersOneWhenItsSemaphoreWasRemovedWhileHeld) {
  OSLockerPosix locker(m_key);
  ASSERT_EQ(locker.Lock(), 0);
  removeSemaphore();
  const LogCapture log;

  EXPECT_EQ(locker.UnLock(), 1);
  const auto textOf = [](int error) {
    return utils::format("'ReleaseSemaphore' Error [%d]: %s", error,
                         std::generic_category().message(error).c_str());
  };
  EXPECT_THAT(log.messages("os::OSLocker::UnLock"),
              ElementsAre(testing::AnyOf(textOf(EINVAL), textOf(EIDRM))));
  EXPECT_EQ(locker.Lock(), 0);
}

TEST_F(PosixOSLocker, AnswersOneWhenTheSemaphoreMayNotBeUsed) {
  constexpr uid_t kNobody = 65534;
  const OSLockerPosix owner(m_key);
  semid_ds status{};
  ASSERT_EQ(semctl(semaphore(), 0, IPC_STAT, &status), 0);
  status.sem_perm.mode = 0;
  ASSERT_EQ(semctl(semaphore(), 0, IPC_SET, &status), 0);

  // The superuser may use everything, so the child becomes somebody else.
  ChildProcess child([this](ChildProcess::Link&) {
    if (geteuid() == 0 && seteuid(kNobody) != 0) {
      return kHasNoLock;
    }
    return static_cast<int>(OSLockerPosix(m_key).Lock());
  });
  EXPECT_EQ(child.wait(), 1);
}

TEST_F(PosixOSLocker, ThrowsWhenTheSemaphoreCannotBeCreated) {
  const auto create = [this] {
    const test::FailingCall failing(test::SystemCall::MakeSemaphore, ENOSPC);
    const OSLockerPosix locker(m_key);
  };

  EXPECT_THAT(create,
              ThrowsExactly<utils::Exception>("Could not create synchronisation sempahore"));
  EXPECT_THAT([] { static_cast<void>(os::OSLocker::getInstance()); },
              ThrowsExactly<utils::Exception>("No singleton instance found for OSLocker"));
}

TEST_F(PosixOSLocker, IsTheRegisteredLocker) {
  OSLockerPosix locker(m_key);

  EXPECT_EQ(os::OSLocker::getInstance(), &locker);
}

}  // namespace
