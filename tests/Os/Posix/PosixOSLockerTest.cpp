// The flash lock between real processes. Each test has a lock of its own.

#include <atomic>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <future>
#include <gmock/gmock.h>
#include <memory>
#include <new>
#include <string>
#include <sys/file.h>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>
#include <vector>

#include "Os/Posix/PosixOSLocker.h"
#include "Os/QuorvelConfig.h"
#include "Utils/Exception.h"
#include "Utils/Format.h"
#include "tests/Os/NoMemoryAfter.h"
#include "tests/Os/Posix/LockFolder.h"
#include "tests/Os/SystemFaults.h"
#include "tests/support/FakeClock.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Posix/ChildProcess.h"
#include "tests/support/Regex.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"
#include "tests/support/WaitUntil.h"

namespace {

using os::OSLocker;
using os::OSLockerPosix;
using std::chrono::milliseconds;
using test::ChildProcess;
using test::HasRecordOf;
using test::LogCapture;
using test::LogLevel;
using test::MatchesRegex;
using test::ThrowsExactly;
using testing::ElementsAre;
using Clock = std::chrono::steady_clock;

constexpr const char* kLock = "os::OSLocker::Lock";
constexpr const char* kWait = "os::OSLockerPosix::waitForSemaphore";
constexpr int kHasNoLock = 9;

// Marks that a child and its parent pass each other.
constexpr char kReady = 'r';
constexpr char kGo = 'g';

class PosixOSLocker : public testing::Test {
 protected:
  PosixOSLocker() { setTimeout(30'000); }

  void setTimeout(int value) {
    m_directory.write("agent.conf", "Timeout = " + std::to_string(value) + "\n");
  }

  // A second process that holds the lock until it is told or killed.
  std::unique_ptr<ChildProcess> startHolder() {
    auto child = std::make_unique<ChildProcess>([this](ChildProcess::Link& parent) {
      OSLockerPosix locker(m_folder.path());
      if (locker.Lock() != 0) {
        return kHasNoLock;
      }
      parent.tell(kReady);
      static_cast<void>(parent.await(kGo));
      return 0;
    });
    EXPECT_TRUE(child->link().await(kReady));
    return child;
  }

  // Takes the lock on a thread of its own, and returns once that waits for it.
  std::future<std::int32_t> lockLater(OSLockerPosix& locker) {
    auto result = std::async(std::launch::async, [&locker] { return locker.Lock(); });
    EXPECT_TRUE(test::waitUntil([] { return !OSLocker::describeAwaited().empty(); }));
    return result;
  }

  const test::LockFolder m_folder;
  test::TempDirectory m_directory;
  utils::QuorvelConfig m_config{m_directory.path() / "agent.conf"};
};

TEST_F(PosixOSLocker, IsInTheFolderThatAllProgramsKnow) {
  EXPECT_STREQ(OSLockerPosix::kFolder, "/run/lock");
}

TEST_F(PosixOSLocker, TakesTheLockAndGivesItBack) {
  OSLockerPosix locker(m_folder.path());

  EXPECT_EQ(locker.Lock(), 0);
  EXPECT_TRUE(m_folder.isTaken());
  EXPECT_EQ(locker.UnLock(), 0);
  EXPECT_FALSE(m_folder.isTaken());
  EXPECT_EQ(locker.Lock(), 0);
  EXPECT_TRUE(m_folder.isTaken());
}

TEST_F(PosixOSLocker, KeepsTheOuterOfTwoLocks) {
  OSLockerPosix locker(m_folder.path());
  const OSLocker::AutoOSLocker outer;

  EXPECT_EQ(locker.Lock(), 2);
  EXPECT_THAT([] { const OSLocker::AutoOSLocker inner; },
              ThrowsExactly<utils::Exception>("Locking access to the Fennelbrook returns 2"));
  EXPECT_TRUE(m_folder.isTaken());
}

TEST_F(PosixOSLocker, UnlocksNothingThatAnotherHolds) {
  const auto other = startHolder();
  OSLockerPosix locker(m_folder.path());

  EXPECT_EQ(locker.UnLock(), 0);
  EXPECT_TRUE(m_folder.isTaken());
}

TEST_F(PosixOSLocker, GivesUpAfterTheTimeoutWhileAnotherProcessHoldsIt) {
  constexpr int kTimeout = 150;
  const auto other = startHolder();
  setTimeout(kTimeout);
  OSLockerPosix locker(m_folder.path());
  const LogCapture log;
  const Clock::time_point start = Clock::now();

  EXPECT_EQ(locker.Lock(), 3);
  EXPECT_GE(Clock::now() - start, milliseconds(kTimeout));
  EXPECT_THAT(
      log.messages(kLock),
      ElementsAre("result = 258",
                  "Timeout occured when the Semaphore was locked. Other application uses "
                  "Fennelbrook SDK at this moment",
                  MatchesRegex("The flash lock is held by os_tests, process [0-9]+, user [^,]+, "
                               "for 00:0[0-9]")));
  EXPECT_THAT([] { const OSLocker::AutoOSLocker lock; },
              ThrowsExactly<utils::Exception>("Locking access to the Fennelbrook returns 3"));
}

TEST_F(PosixOSLocker, WaitsExactlyForTheTimeoutInSmallSteps) {
  const auto other = startHolder();
  setTimeout(130);
  test::FakeClock clock;
  OSLockerPosix locker(m_folder.path(), clock);

  EXPECT_EQ(locker.Lock(), 3);
  EXPECT_THAT(clock.sleeps(),
              ElementsAre(testing::Pair(milliseconds(10), 1), testing::Pair(milliseconds(20), 6)));
}

TEST_F(PosixOSLocker, TellsWhomItWaitsFor) {
  EXPECT_EQ(OSLocker::describeAwaited(), "");
  const auto other = startHolder();
  OSLockerPosix locker(m_folder.path());
  EXPECT_EQ(OSLocker::describeAwaited(), "");
  const LogCapture log;

  auto result = lockLater(locker);
  const std::string holder = "os_tests, process [0-9]+, user [^,]+, for 00:0[0-9]";
  EXPECT_THAT(OSLocker::describeAwaited(), MatchesRegex(holder));
  other->link().tell(kGo);

  EXPECT_EQ(result.get(), 0);
  EXPECT_EQ(OSLocker::describeAwaited(), "");
  EXPECT_THAT(log.records(),
              HasRecordOf("Os/Posix/PosixOSLocker", LogLevel::Debug, kWait,
                          MatchesRegex("Waiting for the flash lock, which is held by " + holder)));
}

TEST_F(PosixOSLocker, WaitsForAProgramThatDoesNotTellItsName) {
  OSLockerPosix locker(m_folder.path());
  const test::LockFolder::Stranger other(m_folder);
  auto result = lockLater(locker);
  EXPECT_EQ(OSLocker::describeAwaited(), "another program");
  other.unlock();
  EXPECT_EQ(result.get(), 0);
}

// A clock that is slept by without memory: it notes nothing.
class ForgetfulClock final : public platform::Clock {
 public:
  [[nodiscard]] TimePoint now() const override { return m_now; }
  void sleepFor(Duration duration) override { m_now += duration; }

 private:
  TimePoint m_now;
};

TEST_F(PosixOSLocker, WaitsOnWithoutMemoryToTellForWhom) {
#ifdef QUORVEL_TEST_THREAD_SANITIZER
  GTEST_SKIP() << "ThreadSanitizer lets no program have an operator new of its own";
#endif
  const auto other = startHolder();
  setTimeout(130);
  ForgetfulClock clock;
  OSLockerPosix locker(m_folder.path(), clock);
  const test::NoMemoryAfter noMemory("Waiting for the flash lock, which is held by os_tests");

  EXPECT_EQ(locker.Lock(), 3);
  EXPECT_EQ(OSLocker::describeAwaited(), "");
  EXPECT_THAT(OSLocker::describeTimeout(), MatchesRegex("os_tests, process [0-9]+, .*"));
}

TEST_F(PosixOSLocker, EndsAWaitThatIsGivenUp) {
  const auto other = startHolder();
  OSLockerPosix locker(m_folder.path());
  auto result = lockLater(locker);
  EXPECT_TRUE(OSLocker::giveUp());

  EXPECT_EQ(result.get(), 3);
  EXPECT_THAT(OSLocker::describeTimeout(), testing::StartsWith("os_tests, process "));
  other->kill();
  EXPECT_EQ(locker.Lock(), 3);
  EXPECT_FALSE(m_folder.isTaken());
}

TEST_F(PosixOSLocker, IsHadAfterItsHolderWasKilled) {
  const auto other = startHolder();
  OSLockerPosix locker(m_folder.path());
  other->kill();

  EXPECT_EQ(locker.Lock(), 0);
}

TEST_F(PosixOSLocker, IsHadByAWaiterWhoseHolderIsKilled) {
  const auto other = startHolder();
  OSLockerPosix locker(m_folder.path());
  auto result = lockLater(locker);
  other->kill();

  EXPECT_EQ(result.get(), 0);
  EXPECT_TRUE(m_folder.isTaken());
}

TEST_F(PosixOSLocker, IsHadByAWaiterWhoseHolderEndsWithoutUnlocking) {
  const auto other = startHolder();
  OSLockerPosix locker(m_folder.path());
  auto result = lockLater(locker);
  other->link().tell(kGo);

  EXPECT_EQ(result.get(), 0);
  EXPECT_EQ(other->wait(), 0);
}

TEST_F(PosixOSLocker, IsGivenBackByItsDestruction) {
  {
    OSLockerPosix locker(m_folder.path());
    ASSERT_EQ(locker.Lock(), 0);
  }

  EXPECT_FALSE(m_folder.isTaken());
}

TEST_F(PosixOSLocker, MayBeTakenAndGivenBackOnDifferentThreads) {
  OSLockerPosix locker(m_folder.path());

  EXPECT_EQ(std::async(std::launch::async, [&] { return locker.Lock(); }).get(), 0);
  EXPECT_TRUE(m_folder.isTaken());
  EXPECT_EQ(locker.UnLock(), 0);
  EXPECT_FALSE(m_folder.isTaken());
}

// What the children of a race share.
struct Arena {
  std::atomic<int> inside{0};
  std::atomic<int> overlaps{0};
  std::atomic<int> turns{0};
};

TEST_F(PosixOSLocker, IsMadeByManyProcessesAtOnceAndExcludes) {
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
      OSLockerPosix locker(m_folder.path());
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
  EXPECT_FALSE(m_folder.isTaken());
  munmap(memory, sizeof(Arena));
}

TEST_F(PosixOSLocker, IsMadeAgainWhenItsFileWasRemoved) {
  OSLockerPosix locker(m_folder.path());
  std::filesystem::remove(m_folder.file());

  EXPECT_EQ(locker.Lock(), 0);
  EXPECT_TRUE(m_folder.isTaken());
}

TEST_F(PosixOSLocker, MeetsOthersAtANewFileAfterARemoval) {
  OSLockerPosix locker(m_folder.path());
  std::filesystem::remove(m_folder.file());
  const auto other = startHolder();
  setTimeout(50);

  EXPECT_EQ(locker.Lock(), 3);
}

TEST_F(PosixOSLocker, IsHadByAWaiterWhoseFileIsRemoved) {
  const auto other = startHolder();
  OSLockerPosix locker(m_folder.path());
  auto result = lockLater(locker);
  std::filesystem::remove(m_folder.file());

  EXPECT_EQ(result.get(), 0);
  EXPECT_TRUE(m_folder.isTaken());
}

TEST_F(PosixOSLocker, AnswersOneWhenTheKernelRefusesTheLock) {
  OSLockerPosix locker(m_folder.path());
  const LogCapture log;
  const std::string reason = "cannot lock " + m_folder.file().string() + ": No locks available";
  testing::internal::CaptureStderr();
  {
    const test::FailingCall failing(test::SystemCall::LockFile, ENOLCK);
    EXPECT_EQ(locker.Lock(), 1);
  }
  EXPECT_EQ(
      testing::internal::GetCapturedStderr(),
      "OrvexQuorvel: no update can be made, since the flash lock cannot be had: " + reason + "\n");
  EXPECT_EQ(OSLocker::describeFailure(), reason);
  EXPECT_THAT(log.messages(kLock),
              ElementsAre("result = -1", "Some error occured when the Semaphore was locked"));
  EXPECT_THAT(log.records(), HasRecordOf("Os/Posix/PosixOSLocker", LogLevel::Error, kWait,
                                         "The flash lock cannot be taken: " + reason));
  EXPECT_EQ(locker.Lock(), 0);
  EXPECT_EQ(OSLocker::describeFailure(), "");
}

TEST_F(PosixOSLocker, TakesTheLockThroughAnInterruption) {
  OSLockerPosix locker(m_folder.path());
  const test::FailingCall failing(test::SystemCall::LockFile, EINTR);
  EXPECT_EQ(locker.Lock(), 0);
}

TEST_F(PosixOSLocker, AnswersOneWhenTheKernelRefusesToTakeItBack) {
  OSLockerPosix locker(m_folder.path());
  ASSERT_EQ(locker.Lock(), 0);
  const LogCapture log;
  {
    const test::FailingCall failing(test::SystemCall::LockFile, EIO);
    EXPECT_EQ(locker.UnLock(), 1);
  }
  EXPECT_THAT(log.messages("os::OSLocker::UnLock"),
              ElementsAre("'ReleaseSemaphore' Error [5]: Input/output error"));
}

TEST_F(PosixOSLocker, ThrowsWhereItsFileCannotBeMade) {
  const auto file = m_directory.write("file", std::string("no folder"));
  try {
    const OSLockerPosix locker(file);
    FAIL() << "made";
  } catch (const os::LockFault& fault) {
    EXPECT_STREQ(fault.what(), "Could not create synchronisation sempahore");
    EXPECT_EQ(fault.reason(), "cannot use " + file.string() + ": Not a directory");
  }
  EXPECT_THAT([] { static_cast<void>(OSLocker::getInstance()); },
              ThrowsExactly<utils::Exception>("No singleton instance found for OSLocker"));
}

TEST_F(PosixOSLocker, IsTheRegisteredLocker) {
  OSLockerPosix locker(m_folder.path());

  EXPECT_EQ(OSLocker::getInstance(), &locker);
}

// Another user has put a file where this user's belongs. The test becomes a user that nobody is.
TEST_F(PosixOSLocker, IsSubstitutedByOneThatAnswersOneWhereItCannotBeMade) {
  constexpr uid_t kUser = 64242;
  const std::filesystem::path file =
      std::filesystem::path(OSLockerPosix::kFolder) / "RavlApplySemaphore.64242";
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can become another user";
  }
  const test::LockFolder::Blocker blocker(file);
  ChildProcess child([](ChildProcess::Link&) {
    if (seteuid(kUser) != 0) {
      return kHasNoLock;
    }
    const LogCapture log;
    const auto locker = os::createOSLockerOrSubstitute();
    const std::string reason = "cannot open /run/lock/RavlApplySemaphore.64242: Permission denied";
    const std::vector<std::string> said = log.messages("os::createOSLockerOrSubstitute");
    const bool isLogged =
        said.size() == 1 &&
        said[0] == "The flash lock cannot be had, and no update can be made: " + reason;
    const bool isRegistered = OSLocker::getInstance() == locker.get();
    testing::internal::CaptureStderr();
    const bool isRefused = locker->Lock() == 1 && locker->UnLock() == 1;
    const bool isExplained =
        testing::internal::GetCapturedStderr() ==
            "OrvexQuorvel: no update can be made, since the flash lock cannot be had: " + reason +
                "\n" &&
        OSLocker::describeFailure() == reason;
    return isLogged && isRegistered && isRefused && isExplained ? 0 : 1;
  });
  EXPECT_EQ(child.wait(), 0);
}

}  // namespace
