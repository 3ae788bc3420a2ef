#include <cerrno>
#include <cstdint>
#include <dlfcn.h>
#include <fcntl.h>
#include <functional>
#include <gmock/gmock.h>
#include <limits>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "midapi/Posix/PosixFileSystem.h"
#include "platform/Posix/FileStamps.h"
#include "tests/support/Posix/ChildProcess.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/WaitUntil.h"

namespace {

using ma::defaultAdaptersDirectory;
using ma::FileFault;
using ma::makePosixFileSystem;
using ma::nativeFileSystem;
using testing::HasSubstr;

// Called once, before the library's next look at a file or folder; set and called by one thread.
std::function<void()> s_beforeLook;  // NOLINT(cert-err58-cpp)

// While it is set, no folder can be synchronised.
bool s_isDiskBroken = false;

template <class Function, class... Arguments>
int look(Function*, const char* name, Arguments... arguments) {
  if (const auto act = std::exchange(s_beforeLook, nullptr)) {
    act();
  }
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name))(arguments...);
}

}  // namespace

// The library's objects in this program call these. The system's names for the arguments are
// reserved. NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" int stat(const char* path, struct stat* state) noexcept {
  return look(&stat, "stat", path, state);
}
extern "C" int fstat(int file, struct stat* state) noexcept {
  return look(&fstat, "fstat", file, state);
}
extern "C" int fsync(int file) {
  if (s_isDiskBroken) {
    errno = EIO;
    return -1;
  }
  return reinterpret_cast<decltype(&fsync)>(dlsym(RTLD_NEXT, "fsync"))(file);
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)

namespace {

class PosixFileSystemTest : public testing::Test {
 protected:
  template <class Operation>
  static std::string faultOf(Operation operation) {
    try {
      operation();
    } catch (const FileFault& fault) {
      return fault.what();
    }
    return "no fault";
  }
  static std::string readFault(const std::filesystem::path& path) {
    return faultOf([&] { static_cast<void>(nativeFileSystem().read(path, 1000)); });
  }

  test::TempDirectory m_directory;
};

TEST_F(PosixFileSystemTest, RefusesAFifoInsteadOfWaitingForItsWriter) {
  const auto fifo = m_directory.path() / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_THAT(readFault(fifo), HasSubstr("Invalid argument"));
}

TEST_F(PosixFileSystemTest, CreatesNothingThroughALinkOrAFifo) {
  const auto fifo = m_directory.path() / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_THAT(faultOf([&] { static_cast<void>(nativeFileSystem().create(fifo)); }),
              HasSubstr("File exists"));
  const auto link = m_directory.path() / "link";
  std::filesystem::create_symlink("target", link);
  EXPECT_THAT(faultOf([&] { static_cast<void>(nativeFileSystem().create(link)); }),
              HasSubstr("File exists"));
  EXPECT_FALSE(std::filesystem::exists(m_directory.path() / "target"));
}

TEST_F(PosixFileSystemTest, TakesNoFifoAndNoLinkForALock) {
  const auto fifo = m_directory.path() / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_THAT(faultOf([&] { static_cast<void>(nativeFileSystem().lock(fifo)); }),
              HasSubstr("cannot lock " + fifo.string() + ": Invalid argument"));
  const auto file = m_directory.write("file", std::string("theirs"));
  const auto link = m_directory.path() / "link";
  std::filesystem::create_symlink(file, link);
  EXPECT_THAT(faultOf([&] { static_cast<void>(nativeFileSystem().lock(link)); }),
              HasSubstr("cannot lock " + link.string()));
  EXPECT_EQ(test::readText(file), "theirs");
}

TEST_F(PosixFileSystemTest, KeepsALockFromThoseWhoMayNotWriteItsFolder) {
  const auto path = m_directory.path() / "lock";
  const auto lock = nativeFileSystem().lock(path);
  struct stat state {};
  ASSERT_EQ(::stat(path.c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 0777, 0600u);
}

TEST_F(PosixFileSystemTest, SharesALockWithTheGroupThatMayWriteItsFolder) {
  std::filesystem::permissions(m_directory.path(), std::filesystem::perms::group_write,
                               std::filesystem::perm_options::add);
  const auto path = m_directory.path() / "lock";
  const auto lock = nativeFileSystem().lock(path);
  struct stat state {};
  ASSERT_EQ(::stat(path.c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 0777, 0660u);
}

TEST_F(PosixFileSystemTest, GivesALockOfTheSuperuserToTheOwnersOfItsFolder) {
  constexpr uid_t kUser = 64242;
  constexpr gid_t kGroup = 64243;
  if (geteuid() != 0 || ::chown(m_directory.path().c_str(), kUser, kGroup) != 0) {
    GTEST_SKIP() << "only root can give a folder away";
  }
  const auto path = m_directory.path() / "lock";
  const auto lock = nativeFileSystem().lock(path);
  struct stat state {};
  ASSERT_EQ(::stat(path.c_str(), &state), 0);
  EXPECT_EQ(state.st_uid, kUser);
  EXPECT_EQ(state.st_gid, kGroup);
  EXPECT_EQ(state.st_mode & 0777, 0600u);
}

// Who may rename the folder must not be made the owner of a file in it by another's rights.
TEST_F(PosixFileSystemTest, SharesALockAsTheFolderIsSharedThatItStandsIn) {
  const auto folder = m_directory.path() / "folder";
  const auto aside = m_directory.path() / "aside";
  const auto shared = m_directory.path() / "shared";
  std::filesystem::create_directory(folder);
  std::filesystem::create_directory(shared);
  std::filesystem::permissions(shared, std::filesystem::perms::group_write,
                               std::filesystem::perm_options::add);
  s_beforeLook = [&] {
    std::filesystem::rename(folder, aside);
    std::filesystem::rename(shared, folder);
  };
  const auto lock = nativeFileSystem().lock(folder / "lock");
  ASSERT_FALSE(s_beforeLook) << "nothing was looked at";
  struct stat state {};
  ASSERT_EQ(::stat((aside / "lock").c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 0777, 0600u);
  ASSERT_EQ(::stat((folder / "lock").c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 0777, 0660u);
}

TEST_F(PosixFileSystemTest, NamesTheLockWhoseFolderIsMissing) {
  const auto path = m_directory.path() / "none" / "lock";
  EXPECT_THAT(faultOf([&] { static_cast<void>(nativeFileSystem().lock(path)); }),
              HasSubstr("cannot lock " + path.string() + ": No such file or directory"));
}

TEST_F(PosixFileSystemTest, TakesTheLockOfAProcessThatDied) {
  const auto path = m_directory.path() / "lock";
  test::ChildProcess holder([&path](test::ChildProcess::Link& parent) {
    const auto lock = nativeFileSystem().lock(path);
    parent.tell(lock != nullptr ? 'l' : 'n');
    static_cast<void>(parent.await('e'));
    return 0;
  });
  ASSERT_TRUE(holder.link().await('l'));
  EXPECT_EQ(nativeFileSystem().lock(path), nullptr);
  holder.kill();
  EXPECT_TRUE(std::filesystem::exists(path));
  EXPECT_NE(nativeFileSystem().lock(path), nullptr);
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(PosixFileSystemTest, GivesTheIdentityThatAFileHasByItsClock) {
  const auto path = m_directory.write("file", std::string("text"));
  std::optional<std::int64_t> now = std::numeric_limits<std::int64_t>::max();
  const auto files = makePosixFileSystem([&now] { return now; });
  EXPECT_NE(files->identity(path), std::nullopt);
  EXPECT_EQ(files->identity(path), platform::identifyFileAt(path, now));
  now = 0;
  EXPECT_EQ(files->identity(path), std::nullopt);
}

TEST_F(PosixFileSystemTest, GivesAnIdentityByTheClockOfTheMachine) {
  const auto path = m_directory.write("file", std::string("text"));
  EXPECT_TRUE(test::waitUntil([&] { return nativeFileSystem().identity(path).has_value(); }));
}

TEST_F(PosixFileSystemTest, SaysWhetherLinksStandBesideFolders) {
  m_directory.write("folder/file", std::string());
  EXPECT_FALSE(nativeFileSystem().folders(m_directory.path()).hasLinks);
  std::filesystem::create_symlink("none", m_directory.path() / "link");
  EXPECT_TRUE(nativeFileSystem().folders(m_directory.path()).hasLinks);
}

TEST_F(PosixFileSystemTest, NamesTheFolderThatCannotBeSynchronised) {
  s_isDiskBroken = true;
  const std::string fault = faultOf([this] { nativeFileSystem().syncFolder(m_directory.path()); });
  s_isDiskBroken = false;
  EXPECT_THAT(fault, HasSubstr(m_directory.path().string() + ": Input/output error"));
}

TEST_F(PosixFileSystemTest, RefusesADevice) {
  EXPECT_THAT(readFault("/dev/null"), HasSubstr("Invalid argument"));
}

TEST_F(PosixFileSystemTest, ReportsAFileThatIsClosedToTheUser) {
  if (::geteuid() == 0) {
    GTEST_SKIP() << "nothing is closed to the superuser";
  }
  const auto file = m_directory.write("file", std::string("x"));
  std::filesystem::permissions(file, std::filesystem::perms::none);
  EXPECT_THAT(readFault(file), HasSubstr("Permission denied"));
}

TEST_F(PosixFileSystemTest, TakesADanglingLinkForAnExistingPath) {
  const auto link = m_directory.path() / "link";
  std::filesystem::create_symlink("nowhere", link);
  EXPECT_TRUE(nativeFileSystem().exists(link));
  EXPECT_FALSE(nativeFileSystem().exists(m_directory.path() / "none"));
}

TEST_F(PosixFileSystemTest, KeepsAdaptersWhereTheSystemKeepsState) {
  EXPECT_EQ(defaultAdaptersDirectory(), "/var/lib/orvex/adapters");
}

}  // namespace
