#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <gmock/gmock.h>
#include <string>

#include "Os/FileCalls.h"
#include "Os/Posix/FileReading.h"
#include "tests/Os/FilesFixture.h"
#include "tests/Os/HungDirectory.h"
#include "tests/Os/Platform.h"
#include "tests/Os/SystemFaults.h"
#include "tests/support/LogCapture.h"

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
  const os::FileStatus look = os::readFileStatus(path);
  EXPECT_EQ(look.silence, FileSilence::None);
  ASSERT_TRUE(look.status);
  EXPECT_EQ(look.status->st_size, 5);
  EXPECT_FALSE(os::readFileStatus(path + "x").status);
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
  EXPECT_EQ(os::readFileStatus(path).silence, FileSilence::StillAway);
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
    EXPECT_EQ(os::readFileStatus(away).silence, FileSilence::StillAway);
  }
  const test::FailingCall failing(test::SystemCall::StartThread, EAGAIN);
  EXPECT_TRUE(os::readFileStatus(here).status);
}

// A whole file has no time: each piece is in time, and all of them together are not.
class SlowReading : public FileReading {
 public:
  ~SlowReading() override { os::fileCalls().setPatiencesOfAFile(m_before); }

 protected:
  static constexpr std::size_t kSize = std::size_t{64} << 20;

  const std::string m_path = sparseFile("long", kSize);

 private:
  const int m_before = os::fileCalls().setPatiencesOfAFile(0);
};

TEST_F(SlowReading, EndsWithWhatItHasByThen) {
  const os::FileBytes content = os::readFileBytes(m_path, kSize);
  EXPECT_EQ(content.silence, FileSilence::TooSlow);
  EXPECT_LT(content.size, kSize);
}

TEST_F(SlowReading, IsReportedByWhoReadsTheFile) {
  const test::LogCapture log;
  EXPECT_LT(os::readContent(m_path, static_cast<std::int32_t>(kSize)).size,
            static_cast<std::int32_t>(kSize));
  EXPECT_THAT(log.records(test::LogSink::EventLog),
              test::HasRecordOf(test::kFilesSource, test::LogLevel::Error, "os::readFile",
                                "The file system of '" + m_path +
                                    "' is too slow; the file was given up after 0 seconds"));
}

}  // namespace
