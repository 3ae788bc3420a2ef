// Which file the users of a machine lock each other out by, and what they cannot do to each other.
// The tests that become other users need root.

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <grp.h>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "Os/Posix/LockFile.h"
#include "tests/Os/Posix/LockFolder.h"
#include "tests/Os/SystemFaults.h"
#include "tests/support/Posix/ChildProcess.h"
#include "tests/support/Throws.h"

namespace {

namespace fs = std::filesystem;

using os::LockFile;
using test::ChildProcess;
using test::ThrowsExactly;
using Clock = std::chrono::steady_clock;

constexpr uid_t kUser = 64242;
constexpr uid_t kOther = 64243;
constexpr gid_t kGroup = 64244;

struct stat statusOf(const fs::path& path) {
  struct stat status {};
  EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
  return status;
}

mode_t modeOf(const fs::path& path) {
  return statusOf(path).st_mode & ALLPERMS;
}

// Does something as another user, in a process of its own. Returns whether it was done.
bool doAs(uid_t user, gid_t group, const std::function<bool()>& act) {
  ChildProcess child([&](ChildProcess::Link&) {
    const bool isUser = setgroups(0, nullptr) == 0 && setegid(group) == 0 && seteuid(user) == 0;
    return isUser && act() ? 0 : 1;
  });
  return child.wait() == 0;
}

bool doAs(uid_t user, const std::function<bool()>& act) {
  return doAs(user, user, act);
}

class LockFileTest : public testing::Test {
 protected:
  LockFileTest() { ::chmod(m_folder.path().c_str(), 01777); }

  // A second one of this process, which counts as another.
  bool canBeTaken() {
    LockFile file(m_folder.path());
    return file.tryLock(Clock::now());
  }

  const test::LockFolder m_folder;
};

TEST_F(LockFileTest, SaysWhyItCannotBeMade) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can become another user";
  }
  ::chmod(m_folder.path().c_str(), 0755);
  EXPECT_TRUE(doAs(kUser, [this] {
    try {
      const LockFile file(m_folder.path());
    } catch (const std::runtime_error& fault) {
      const std::string text = fault.what();
      return text.starts_with("cannot make ") && text.ends_with(": Permission denied");
    }
    return false;
  }));
}

TEST_F(LockFileTest, ExcludesAndFrees) {
  LockFile file(m_folder.path());
  EXPECT_TRUE(file.tryLock(Clock::now()));
  EXPECT_FALSE(canBeTaken());
  EXPECT_EQ(file.unlock(), 0);
  EXPECT_TRUE(canBeTaken());
}

TEST_F(LockFileTest, IsClosedToOthers) {
  const mode_t before = umask(0);
  const LockFile file(m_folder.path());
  umask(before);
  EXPECT_EQ(file.path(), m_folder.file());
  EXPECT_EQ(modeOf(file.path()), 0600U);
}

TEST_F(LockFileTest, IsTakenFromOthersWhoWereLetIn) {
  { const LockFile file(m_folder.path()); }
  ASSERT_EQ(::chmod(m_folder.file().c_str(), 0666), 0);
  const LockFile file(m_folder.path());
  EXPECT_EQ(modeOf(m_folder.file()), 0660U);
}

TEST_F(LockFileTest, TellsWhoHasIt) {
  const Clock::time_point now = Clock::now();
  LockFile file(m_folder.path());
  LockFile waiter(m_folder.path());
  EXPECT_EQ(waiter.readHolder(), std::nullopt);
  ASSERT_TRUE(file.tryLock(now));

  const std::optional<os::LockHolder> holder = waiter.readHolder();

  ASSERT_TRUE(holder.has_value());
  EXPECT_EQ(holder->program, "os_tests");
  EXPECT_EQ(holder->process, getpid());
  EXPECT_LT(now - holder->since, std::chrono::milliseconds(1));
  const std::string text =
      "os_tests, process " + std::to_string(getpid()) + ", user " + holder->user + ", for 01:05";
  EXPECT_EQ(holder->toString(now + std::chrono::seconds(65)), text);
  if (geteuid() == 0) {
    EXPECT_EQ(holder->user, "root");
  }
  EXPECT_EQ(file.unlock(), 0);
  EXPECT_EQ(waiter.readHolder(), std::nullopt);
}

TEST_F(LockFileTest, IsHadWithoutMemoryToTellWhoHasIt) {
#ifdef QUORVEL_TEST_THREAD_SANITIZER
  GTEST_SKIP() << "the sanitizer's allocator is in force";
#endif
  LockFile file(m_folder.path());
  LockFile waiter(m_folder.path());
  ASSERT_TRUE(canBeTaken());                            // the test's own flock needs memory once
  std::ofstream(file.path()) << "4711 0 12 quorvel\n";  // of one that was killed
  {
    const test::FailingCall noMemory(test::SystemCall::Allocate, ENOMEM);
    EXPECT_TRUE(file.tryLock(Clock::now()));
  }
  EXPECT_EQ(waiter.readHolder(), std::nullopt);
  EXPECT_EQ(file.unlock(), 0);
  EXPECT_TRUE(canBeTaken());
}

TEST_F(LockFileTest, TakesALineThatIsNotWholeForNone) {
  LockFile file(m_folder.path());
  for (const char* line : {"4711", "4711 0 12", "4711 0 12 quorvel", "x 0 12 quorvel\n", "\n",
                           "-1 0 12 quorvel\n", "4711 0 12 \n", "4711 0 z quorvel\n"}) {
    std::ofstream(file.path()) << line;
    EXPECT_EQ(file.readHolder(), std::nullopt) << line;
  }
}

TEST_F(LockFileTest, ShowsNothingOfAHolderThatATerminalWouldObey) {
  LockFile file(m_folder.path());
  std::ofstream(file.path()) << "4711 4294967294 12 a\x1b[2Jb\x9b" << std::string(100, 'c') << "\n";
  const std::optional<os::LockHolder> holder = file.readHolder();
  ASSERT_TRUE(holder.has_value());
  EXPECT_EQ(holder->program, "a?[2Jb?" + std::string(57, 'c'));
  EXPECT_EQ(holder->user, "4294967294");
}

TEST_F(LockFileTest, RefusesAFolderThatIsNotSafe) {
  ASSERT_EQ(::chmod(m_folder.path().c_str(), 0777), 0);
  const std::string folder = m_folder.path().string();
  EXPECT_THAT([&] { const LockFile file(folder); },
              ThrowsExactly<std::runtime_error>("others can remove files from " + folder +
                                                ": let root own it, with mode 1777"));
}

TEST_F(LockFileTest, RefusesAFileWithOtherNames) {
  { const LockFile file(m_folder.path()); }
  fs::create_hard_link(m_folder.file(), m_folder.path() / "other");
  EXPECT_THAT([&] { const LockFile file(m_folder.path()); },
              ThrowsExactly<std::runtime_error>(m_folder.file().string() +
                                                " has other names: have them removed"));
}

// What only root can try.
class LockFileOfUsers : public LockFileTest {
 protected:
  void SetUp() override {
    if (geteuid() != 0) {
      GTEST_SKIP() << "only root can become other users";
    }
  }

  bool isTakenBy(uid_t user, gid_t group) {
    return doAs(user, group, [&] { return !canBeTaken(); });
  }
};

TEST_F(LockFileOfUsers, CannotBeTakenRemovedOrReadByThem) {
  LockFile file(m_folder.path());
  ASSERT_TRUE(file.tryLock(Clock::now()));

  EXPECT_TRUE(doAs(kUser, [&] {
    const bool isOpened = ::open(file.path().c_str(), O_RDONLY) >= 0;
    const bool isRemoved = ::unlink(file.path().c_str()) == 0;
    const bool isMoved = ::rename(file.path().c_str(), (file.path().string() + "2").c_str()) == 0;
    return !isOpened && !isRemoved && !isMoved;
  }));
  EXPECT_FALSE(canBeTaken());
}

TEST_F(LockFileOfUsers, IsOneOfTheirOwn) {
  LockFile file(m_folder.path());
  ASSERT_TRUE(file.tryLock(Clock::now()));

  EXPECT_TRUE(doAs(kUser, [&] {
    LockFile own(m_folder.path());
    return own.path() == m_folder.fileOf(kUser) && own.tryLock(Clock::now()) && !canBeTaken();
  }));
  EXPECT_EQ(statusOf(m_folder.fileOf(kUser)).st_uid, kUser);
  EXPECT_EQ(modeOf(m_folder.fileOf(kUser)), 0600U);
}

TEST_F(LockFileOfUsers, IsTheMachinesForTheGroupThatItLetsIn) {
  { const LockFile file(m_folder.path()); }
  ASSERT_EQ(::chown(m_folder.machinesFile().c_str(), 0, kGroup), 0);
  ASSERT_EQ(::chmod(m_folder.machinesFile().c_str(), 0660), 0);
  LockFile file(m_folder.path());
  EXPECT_EQ(modeOf(m_folder.machinesFile()), 0660U);
  ASSERT_TRUE(file.tryLock(Clock::now()));

  EXPECT_TRUE(isTakenBy(kUser, kGroup));
  EXPECT_FALSE(isTakenBy(kUser, kUser));
  EXPECT_EQ(file.unlock(), 0);
  EXPECT_FALSE(isTakenBy(kUser, kGroup));
}

TEST_F(LockFileOfUsers, IsNotTheMachinesWhereItLetsEverybodyIn) {
  { const LockFile file(m_folder.path()); }
  ASSERT_EQ(::chmod(m_folder.machinesFile().c_str(), 0666), 0);
  EXPECT_TRUE(
      doAs(kUser, [&] { return LockFile(m_folder.path()).path() == m_folder.fileOf(kUser); }));
}

// What a user puts in the place of the machine's file before root comes.
struct Placed {
  const char* what;
  bool (*place)(const fs::path& path);
};

class LockFileAfterAStranger : public LockFileOfUsers,
                               public testing::WithParamInterface<Placed> {};

TEST_P(LockFileAfterAStranger, IsMadeAnewByRoot) {
  ASSERT_TRUE(doAs(kUser, [&] { return GetParam().place(m_folder.machinesFile()); }));

  LockFile file(m_folder.path());

  EXPECT_EQ(statusOf(m_folder.machinesFile()).st_uid, 0U);
  EXPECT_TRUE(S_ISREG(statusOf(m_folder.machinesFile()).st_mode));
  EXPECT_TRUE(file.tryLock(Clock::now()));
  EXPECT_FALSE(canBeTaken());
}

TEST_P(LockFileAfterAStranger, IsRefusedByAUser) {
  const fs::path path = m_folder.fileOf(kOther);
  ASSERT_TRUE(doAs(kUser, [&] { return GetParam().place(path); }));
  EXPECT_TRUE(doAs(kOther, [&] {
    try {
      const LockFile file(m_folder.path());
      return false;
    } catch (const std::runtime_error& error) {
      return std::string(error.what()).find(path.string()) != std::string::npos;
    }
  }));
}

TEST_P(LockFileAfterAStranger, IsNotTakenForTheMachinesByAUser) {
  ASSERT_TRUE(doAs(kUser, [&] { return GetParam().place(m_folder.machinesFile()); }));
  EXPECT_TRUE(
      doAs(kOther, [&] { return LockFile(m_folder.path()).path() == m_folder.fileOf(kOther); }));
}

bool placeLink(const fs::path& path, const char* target) {
  return ::symlink(target, path.c_str()) == 0;
}

INSTANTIATE_TEST_SUITE_P(
    Things, LockFileAfterAStranger,
    testing::Values(
        Placed{"File",
               [](const fs::path& path) {
                 return ::close(::open(path.c_str(), O_RDWR | O_CREAT, 0666)) == 0;
               }},
        Placed{"Fifo", [](const fs::path& path) { return ::mkfifo(path.c_str(), 0666) == 0; }},
        Placed{"Folder",
               [](const fs::path& path) {
                 return ::mkdir(path.c_str(), 0777) == 0 &&
                        ::mkdir((path / "child").c_str(), 0777) == 0;
               }},
        Placed{"Link", [](const fs::path& path) { return placeLink(path, "/etc/passwd"); }},
        Placed{"LinkToNothing",
               [](const fs::path& path) { return placeLink(path, "/nowhere/at/all"); }}),
    [](const testing::TestParamInfo<Placed>& entry) { return std::string(entry.param.what); });

// Nobody may take the new one for the lock before it is known to stay.
TEST_F(LockFileOfUsers, IsLockedWhileItTakesAStrangersPlace) {
  ASSERT_TRUE(doAs(kUser, [&] {
    return ::close(::open(m_folder.machinesFile().c_str(), O_RDWR | O_CREAT, 0666)) == 0;
  }));
  {
    const test::FailingCall failing(test::SystemCall::LockFile, ENOLCK);
    EXPECT_THAT(
        [&] { const LockFile file(m_folder.path()); },
        testing::ThrowsMessage<std::runtime_error>(testing::AllOf(
            testing::StartsWith("cannot make "), testing::EndsWith(": No locks available"))));
  }
  EXPECT_EQ(statusOf(m_folder.machinesFile()).st_uid, kUser);
}

// Each finds the stranger's file, and all have to meet at one of root's.
TEST_F(LockFileOfUsers, IsOneForAllProgramsOfRootThatReplaceAStrangers) {
  constexpr int kProcesses = 8;
  for (int round = 0; round < 20; ++round) {
    fs::remove(m_folder.machinesFile());
    ASSERT_TRUE(doAs(kUser, [&] {
      return ::close(::open(m_folder.machinesFile().c_str(), O_RDWR | O_CREAT, 0666)) == 0;
    }));
    std::vector<std::unique_ptr<ChildProcess>> children;
    for (int number = 0; number < kProcesses; ++number) {
      children.push_back(std::make_unique<ChildProcess>([&](ChildProcess::Link& parent) {
        parent.tell('r');
        static_cast<void>(parent.await('g'));
        LockFile file(m_folder.path());
        const bool isMine = file.tryLock(Clock::now());
        parent.tell(isMine ? 'l' : 'n');
        return parent.await('q') ? 0 : 1;
      }));
    }
    for (const auto& child : children) {
      EXPECT_TRUE(child->link().await('r'));
    }
    for (const auto& child : children) {
      child->link().tell('g');
    }
    int holders = 0;
    for (const auto& child : children) {
      holders += child->link().await('l') ? 1 : 0;
    }
    EXPECT_LE(holders, 1);
    EXPECT_EQ(statusOf(m_folder.machinesFile()).st_uid, 0U);
    for (const auto& child : children) {
      child->link().tell('q');
      EXPECT_EQ(child->wait(), 0);
    }
  }
}

TEST_F(LockFileOfUsers, BecomesTheMachinesOnceThatLetsThemIn) {
  EXPECT_TRUE(doAs(kUser, kGroup, [&] {
    LockFile file(m_folder.path());
    if (file.path() != m_folder.fileOf(kUser)) {
      return false;
    }
    ChildProcess root([&](ChildProcess::Link&) {
      const bool isRoot = seteuid(0) == 0;
      { const LockFile made(m_folder.path()); }
      return isRoot && ::chown(m_folder.machinesFile().c_str(), 0, kGroup) == 0 &&
                     ::chmod(m_folder.machinesFile().c_str(), 0660) == 0
                 ? 0
                 : 1;
    });
    return root.wait() == 0 && file.tryLock(Clock::now()) && file.path() == m_folder.machinesFile();
  }));
}

TEST_F(LockFileOfUsers, DoesNotFollowALinkThatAStrangerMade) {
  const test::TempDirectory directory;
  const fs::path precious = directory.write("precious", std::string("content"));
  ASSERT_TRUE(doAs(kUser, [&] { return placeLink(m_folder.machinesFile(), precious.c_str()); }));
  LockFile file(m_folder.path());
  ASSERT_TRUE(file.tryLock(Clock::now()));
  EXPECT_EQ(test::readText(precious), "content");
}

TEST_F(LockFileOfUsers, IsInAFolderThatRootMakesWhereThereIsNone) {
  const fs::path folder = m_folder.path() / "run";
  const LockFile file(folder);
  EXPECT_EQ(modeOf(folder), 01777U);
  EXPECT_TRUE(doAs(kUser, [&] {
    const LockFile own(folder);
    return true;
  }));
}

TEST_F(LockFileOfUsers, NeedsAFolderOfRoot) {
  const fs::path folder = m_folder.path() / "run";
  EXPECT_TRUE(doAs(kUser, [&] {
    try {
      const LockFile file(folder);
      return false;
    } catch (const std::runtime_error& error) {
      return error.what() == "cannot look at " + folder.string() + ": No such file or directory";
    }
  }));
  ASSERT_TRUE(doAs(kUser, [&] { return ::mkdir(folder.c_str(), 0755) == 0; }));
  EXPECT_THROW(const LockFile file(folder), std::runtime_error);
}

}  // namespace
