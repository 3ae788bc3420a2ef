#include <ctime>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

#include "midapi/FileSystem.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/WaitUntil.h"

namespace ma {
namespace {

using testing::HasSubstr;

class PosixFileSystemTest : public testing::Test {
 protected:
  std::string readFault(const std::filesystem::path& path) {
    try {
      static_cast<void>(nativeFileSystem().read(path, 1000));
    } catch (const FileFault& fault) {
      return fault.what();
    }
    return "no fault";
  }

  test::TempDirectory m_directory;
};

TEST_F(PosixFileSystemTest, RefusesAFifoInsteadOfWaitingForItsWriter) {
  const auto fifo = m_directory.path() / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_THAT(readFault(fifo), HasSubstr("Invalid argument"));
}

TEST_F(PosixFileSystemTest, GivesAnIdentityToAFileThatIsLeftAlone) {
  const auto path = m_directory.write("file", std::string("text"));
  std::optional<FileIdentity> identity;
  ASSERT_TRUE(test::waitUntil([&] {
    identity = nativeFileSystem().identity(path);
    return identity.has_value();
  }));

  EXPECT_EQ(nativeFileSystem().identity(path), identity);
  EXPECT_EQ(nativeFileSystem().identity(m_directory.path() / "." / "file"), identity);
}

TEST_F(PosixFileSystemTest, GivesNoIdentityToAFileThatHasJustChanged) {
  // The machine may stand still between the two calls once; not always.
  EXPECT_TRUE(test::waitUntil([&] {
    const auto path = m_directory.write("file", std::string("text"));
    return !nativeFileSystem().identity(path).has_value();
  }));
}

TEST_F(PosixFileSystemTest, WaitsLongerForAFileWithTimesInWholeSeconds) {
  const auto path = m_directory.write("file", std::string("text"));
  const timespec times[] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  struct stat state {};
  ASSERT_EQ(::stat(path.c_str(), &state), 0);
  const auto age = [&state] {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return double(now.tv_sec - state.st_ctim.tv_sec) +
           double(now.tv_nsec - state.st_ctim.tv_nsec) / 1e9;
  };
  ASSERT_TRUE(test::waitUntil([&] { return nativeFileSystem().identity(path).has_value(); }));
  EXPECT_GE(age(), 3.0);
}

TEST_F(PosixFileSystemTest, GivesNoIdentityToWhatIsNotThere) {
  EXPECT_EQ(nativeFileSystem().identity(m_directory.path() / "none"), std::nullopt);
  EXPECT_EQ(nativeFileSystem().identity(""), std::nullopt);
}

TEST_F(PosixFileSystemTest, SaysWhetherLinksStandBesideFolders) {
  m_directory.write("folder/file", std::string());
  EXPECT_FALSE(nativeFileSystem().folders(m_directory.path()).hasLinks);
  std::filesystem::create_symlink("none", m_directory.path() / "link");
  EXPECT_TRUE(nativeFileSystem().folders(m_directory.path()).hasLinks);
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
}  // namespace ma
