#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "midapi/FileSystem.h"
#include "tests/support/TempDirectory.h"

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
