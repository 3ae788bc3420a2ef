#include <cerrno>
#include <chrono>
#include <gmock/gmock.h>
#include <string>

#include "Os/FileCalls.h"
#include "Os/Posix/FileReading.h"
#include "tests/Os/FilesFixture.h"
#include "tests/Os/HungDirectory.h"
#include "tests/Os/SystemFaults.h"

namespace {

using os::FileSilence;

class FileReading : public test::FilesFixture {
 protected:
  static std::string contentOf(const os::FileBytes& content) {
    return {content.bytes.get(), content.bytes.get() + content.size};
  }
};

TEST_F(FileReading, FindsTheStatusOfWhatIsThere) {
  const std::string path = file("image", "12345");
  const os::FileLook look = os::lookAtFile(path);
  EXPECT_EQ(look.silence, FileSilence::None);
  ASSERT_TRUE(look.status);
  EXPECT_EQ(look.status->st_size, 5);
  EXPECT_FALSE(os::lookAtFile(path + "x").status);
}

TEST_F(FileReading, ReadsAsMuchAsThereIs) {
  const std::string path = file("image", "12345");
  EXPECT_EQ(contentOf(os::readFileBytes(path, 3)), "123");
  EXPECT_EQ(contentOf(os::readFileBytes(path, 100)), "12345");
  EXPECT_EQ(os::readFileBytes(path, 0).size, 0u);
  EXPECT_EQ(os::readFileBytes(path + "x", 100).size, 0u);
}

TEST_F(FileReading, AsksNothingWhereAQuestionIsAway) {
  const std::string path = file("away/image", "12345");
  const test::HungDirectory hung(m_directory.path().string() + "/away");
  EXPECT_EQ(os::lookAtFile(path).silence, FileSilence::StillAway);
  const os::FileBytes content = os::readFileBytes(path, 5);
  EXPECT_EQ(content.silence, FileSilence::StillAway);
  EXPECT_EQ(content.size, 0u);
}

TEST_F(FileReading, AsksNothingThereWithoutAThreadEither) {
  const std::string away = file("away/image", "12345");
  const std::string here = file("image", "12345");
  const test::HungDirectory hung(m_directory.path().string() + "/away");
  {
    const test::FailingCall failing(test::SystemCall::StartThread, EAGAIN);
    EXPECT_EQ(os::lookAtFile(away).silence, FileSilence::StillAway);
  }
  const test::FailingCall failing(test::SystemCall::StartThread, EAGAIN);
  EXPECT_TRUE(os::lookAtFile(here).status);
}

TEST_F(FileReading, HasOneTimeForAWholeFile) {
  const std::string path = file("long", std::string(std::size_t{64} << 20, 'x'));
  const auto before = os::fileCalls().setPatience(std::chrono::milliseconds(2));
  const os::FileBytes content = os::readFileBytes(path, std::size_t{64} << 20);
  os::fileCalls().setPatience(before);
  // Each piece may be in time, and all of them together are not.
  EXPECT_NE(content.silence, FileSilence::None);
  EXPECT_LT(content.size, std::size_t{64} << 20);
  EXPECT_TRUE(
      test::waitUntil([&path] { return os::readFileBytes(path, 1).silence == FileSilence::None; }));
}

}  // namespace
