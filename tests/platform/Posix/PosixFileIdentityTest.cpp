#include <cstdint>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <optional>
#include <sys/stat.h>

#include "platform/FileIdentity.h"
#include "platform/Posix/FileStamps.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/WaitUntil.h"

namespace {

using platform::FileIdentity;
using platform::identifyFile;

constexpr std::int64_t kMillisecond = 1'000'000;
constexpr std::int64_t kSecond = 1000 * kMillisecond;

class PosixFileIdentity : public testing::Test {
 protected:
  // Dates the file's content; the system dates that change to now.
  void setModified(std::int64_t nanoseconds) {
    const timespec time{nanoseconds / kSecond, nanoseconds % kSecond};
    const timespec times[] = {time, time};
    ASSERT_EQ(::utimensat(AT_FDCWD, m_path.c_str(), times, 0), 0);
  }
  [[nodiscard]] std::int64_t changed() const {
    struct stat state {};
    EXPECT_EQ(::stat(m_path.c_str(), &state), 0);
    return std::int64_t{state.st_ctim.tv_sec} * kSecond + state.st_ctim.tv_nsec;
  }
  void expectIdentityFrom(std::int64_t moment) const {
    EXPECT_EQ(platform::identifyFileAt(m_path, moment - 1), std::nullopt);
    EXPECT_NE(platform::identifyFileAt(m_path, moment), std::nullopt);
  }
  FileIdentity awaitIdentity() {
    std::optional<FileIdentity> identity;
    EXPECT_TRUE(test::waitUntil([&] { return (identity = identifyFile(m_path)).has_value(); }));
    return identity.value_or(FileIdentity{});
  }

  test::TempDirectory m_directory;
  const std::filesystem::path m_path = m_directory.write("file", std::string("text"));
};

TEST_F(PosixFileIdentity, StaysWithAFileThatIsLeftAlone) {
  const FileIdentity identity = awaitIdentity();

  EXPECT_EQ(identifyFile(m_path), identity);
  EXPECT_EQ(identifyFile(m_directory.path() / "." / "file"), identity);
}

TEST_F(PosixFileIdentity, ChangesWithTheContentAndWithTheFile) {
  const FileIdentity first = awaitIdentity();
  m_directory.write("file", std::string("TEXT"));
  const FileIdentity second = awaitIdentity();
  std::filesystem::rename(m_directory.write("other", std::string("TEXT")), m_path);
  const FileIdentity third = awaitIdentity();

  EXPECT_NE(first, second);
  EXPECT_NE(second, third);
}

TEST_F(PosixFileIdentity, IsThereWhenTheFileWasLeftAloneForSomeTicks) {
  setModified(1000 * kSecond + 1);
  expectIdentityFrom(changed() + 40 * kMillisecond);
}

TEST_F(PosixFileIdentity, IsWaitedForLongerWithTimesInWholeSeconds) {
  setModified(1000 * kSecond);
  expectIdentityFrom(changed() + 3 * kSecond);
}

TEST_F(PosixFileIdentity, IsAsOldAsItsLastChangeOfEitherKind) {
  const std::int64_t future = changed() + 1000 * kSecond + 1;
  setModified(future);
  expectIdentityFrom(future + 40 * kMillisecond);
}

TEST_F(PosixFileIdentity, IsMissingWhereTheFileHasJustChanged) {
  // The machine may stand still between the two calls once; not always.
  EXPECT_TRUE(test::waitUntil(
      [&] { return !identifyFile(m_directory.write("file", std::string("text"))).has_value(); }));
}

TEST_F(PosixFileIdentity, IsMissingWhereNothingIsOrTheTimeCannotBeTold) {
  EXPECT_EQ(identifyFile(m_directory.path() / "none"), std::nullopt);
  EXPECT_EQ(identifyFile(""), std::nullopt);
  EXPECT_EQ(platform::identifyFileAt(m_path, std::nullopt), std::nullopt);
}

}  // namespace
