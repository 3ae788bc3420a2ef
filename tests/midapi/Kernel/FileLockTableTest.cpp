#include <fcntl.h>
#include <gmock/gmock.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include "midapi/Kernel/FileLockTable.h"
#include "platform/Posix/Descriptor.h"
#include "tests/support/TempDirectory.h"

namespace {

class FileLockTable : public testing::Test {
 protected:
  bool isLockedBy(const std::string& line) const {
    return ma::isFileLocked(m_file, m_directory.write("locks", "junk\n\n" + line + "\n"));
  }
  // Returns the file as the table names it, on a device of another number.
  std::string number(unsigned otherBy = 0) const {
    struct stat state {};
    EXPECT_EQ(::stat(m_file.c_str(), &state), 0);
    char text[64];
    std::snprintf(text, sizeof text, "%02x:%02x:%lu", major(state.st_dev),
                  minor(state.st_dev) + otherBy, static_cast<unsigned long>(state.st_ino));
    return text;
  }

  test::TempDirectory m_directory;
  const std::filesystem::path m_file = m_directory.write("file", std::string());
};

TEST_F(FileLockTable, ShowsWhatTheKernelHasLocked) {
  EXPECT_FALSE(ma::isFileLocked(m_file));
  const platform::Descriptor file(::open(m_file.c_str(), O_RDWR | O_CLOEXEC));
  ASSERT_EQ(::flock(file.get(), LOCK_EX), 0);
  EXPECT_TRUE(ma::isFileLocked(m_file));
}

TEST_F(FileLockTable, ShowsLocksOfWholeFilesAlone) {
  EXPECT_TRUE(isLockedBy("1: FLOCK  ADVISORY  WRITE 5606 " + number() + " 0 EOF"));
  EXPECT_FALSE(isLockedBy("1: POSIX  ADVISORY  WRITE 5606 " + number() + " 0 EOF"));
  EXPECT_FALSE(isLockedBy("1: FLOCK  ADVISORY  READ 5606 " + number() + " 0 EOF"));
  EXPECT_FALSE(isLockedBy("1: -> FLOCK  ADVISORY  WRITE 5606 " + number() + " 0 EOF"));
  EXPECT_FALSE(isLockedBy("1: FLOCK  ADVISORY  WRITE 5606 " + number(1) + " 0 EOF"));
  EXPECT_FALSE(isLockedBy("1: FLOCK  ADVISORY  WRITE 5606 " + number() + "1 0 EOF"));
}

TEST_F(FileLockTable, PassesOverLinesThatAreNone) {
  for (const char* line : {"1:", "1: FLOCK ADVISORY WRITE 1",
                           "1: FLOCK ADVISORY WRITE 1 ::", "1: FLOCK ADVISORY WRITE 1 x:y:z 0 EOF",
                           "1: FLOCK ADVISORY WRITE 1 1"}) {
    EXPECT_FALSE(isLockedBy(line)) << line;
  }
}

TEST_F(FileLockTable, IsDoneWithoutWhereItIsMissing) {
  const auto none = m_directory.path() / "none";
  EXPECT_FALSE(ma::isFileLocked(m_file, none));
  const platform::Descriptor file(::open(m_file.c_str(), O_RDWR | O_CLOEXEC));
  ASSERT_EQ(::flock(file.get(), LOCK_EX), 0);
  EXPECT_TRUE(ma::isFileLocked(m_file, none));
  ASSERT_EQ(::flock(file.get(), LOCK_UN), 0);
  EXPECT_FALSE(ma::isFileLocked(m_file, none));
  EXPECT_EQ(::flock(file.get(), LOCK_EX | LOCK_NB), 0);  // nothing was left of the attempt
}

TEST_F(FileLockTable, ShowsNothingOfWhatIsNotThere) {
  EXPECT_FALSE(ma::isFileLocked(m_directory.path() / "none"));
  EXPECT_FALSE(ma::isFileLocked(m_file, m_directory.path() / "none"));
}

}  // namespace
