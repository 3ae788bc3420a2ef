#include <filesystem>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "Os/FileAhead.h"
#include "Os/FileCalls.h"
#include "tests/Os/FilesFixture.h"
#include "tests/Os/HungDirectory.h"
#include "tests/Os/Platform.h"
#include "tests/support/LogCapture.h"

namespace {

using os::FileAhead;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::uint32_t kMost = 100;

class PosixFileAhead : public test::FilesFixture {
 protected:
  static std::string contentOf(const FileAhead& ahead) {
    return {ahead.content().begin(), ahead.content().end()};
  }
  // Returns what the file functions log.
  static std::vector<std::string> recordsOf(const std::string& path) {
    const test::LogCapture log;
    EXPECT_EQ(os::getFileSize(path), 5);
    EXPECT_EQ(read(path, 5).size(), 5u);
    std::vector<std::string> lines;
    for (const test::LogRecord& record : log.records()) {
      lines.push_back(record.source + ":" + record.function + ":" + record.message);
    }
    return lines;
  }
};

TEST_F(PosixFileAhead, AnswersFromOneContentHoweverTheFileChanges) {
  const std::string path = file("image", "12345");
  FileAhead ahead(path, kMost);
  file("image", "another");
  {
    const FileAhead::InForce inForce(&ahead);
    EXPECT_EQ(os::getFileSize(path), 5);
    EXPECT_FALSE(ahead.isTaken());
    EXPECT_EQ(read(path, 5), "12345");
    EXPECT_EQ(os::readContent(path, 5).bytes.get(), ahead.content().data());
  }
  EXPECT_TRUE(ahead.isTaken());
  EXPECT_EQ(contentOf(ahead), "12345");
  EXPECT_EQ(os::getFileSize(path), 7);
}

TEST_F(PosixFileAhead, WritesTheRecordsOfAFileThatIsReadInItsTurn) {
  const std::string path = file("image", "12345");
  const std::vector<std::string> expected = recordsOf(path);
  const test::LogCapture log;
  FileAhead ahead(path, kMost);
  EXPECT_THAT(log.records(), IsEmpty());
  const FileAhead::InForce inForce(&ahead);
  EXPECT_EQ(recordsOf(path), expected);
}

TEST_F(PosixFileAhead, RefusesWhatCouldNotBeReadAtItsTime) {
  FileAhead absent(path("image"), kMost);
  FileAhead directory(m_directory.path().string(), kMost);
  file("image", "12345");
  {
    const FileAhead::InForce inForce(&absent);
    EXPECT_THROW(static_cast<void>(os::getFileSize(path("image"))), utils::Exception);
  }
  const FileAhead::InForce inForce(&directory);
  EXPECT_THAT([&] { static_cast<void>(os::getFileSize(m_directory.path().string())); },
              testing::ThrowsMessage<utils::Exception>(HasSubstr("points to a directory")));
}

TEST_F(PosixFileAhead, HandsOutASmallerPartThatCountsAsNothingTaken) {
  const std::string path = file("image", "12345");
  FileAhead ahead(path, kMost);
  const FileAhead::InForce inForce(&ahead);
  EXPECT_EQ(read(path, 3), "123");
  EXPECT_FALSE(ahead.isTaken());
  EXPECT_EQ(read(path, 50), "12345");
}

TEST_F(PosixFileAhead, DoesNotReadMoreThanItMay) {
  const std::string path = file("image", std::string(kMost + 1, 'x'));
  FileAhead ahead(path, kMost);
  EXPECT_THAT(ahead.content(), IsEmpty());
  const FileAhead::InForce inForce(&ahead);
  EXPECT_EQ(os::getFileSize(path), kMost + 1);
}

TEST_F(PosixFileAhead, IsOfOneFileAndOneThread) {
  const std::string path = file("image", "12345");
  const std::string other = file("other", "67");
  FileAhead ahead(path, kMost);
  file("image", "another");
  const FileAhead::InForce inForce(&ahead);
  EXPECT_EQ(os::getFileSize(other), 2);
  std::thread([&path] { EXPECT_EQ(os::getFileSize(path), 7); }).join();
  const FileAhead::InForce none(nullptr);
  EXPECT_EQ(os::getFileSize(path), 7);
}

TEST_F(PosixFileAhead, TellsOfASilentFileSystemWhenItIsAskedFor) {
  const std::string path = file("away/image", "12345");
  const test::HungDirectory hung(m_directory.path().string() + "/away");
  const test::LogCapture log;
  FileAhead ahead(path, kMost);
  EXPECT_THAT(log.records(), IsEmpty());
  const FileAhead::InForce inForce(&ahead);
  expectNotOpened(path);
  EXPECT_THAT(log.records(test::LogSink::EventLog),
              test::HasRecordOf(test::kFilesSource, test::LogLevel::Error, "os::readFile",
                                "The file system of '" + path +
                                    "' has not answered an earlier question yet; what is there "
                                    "counts as missing until it does"));
}

// Those that come wait for nobody.
class PosixFileAheadWithoutTime : public PosixFileAhead {
 public:
  ~PosixFileAheadWithoutTime() override { os::fileCalls().setPatiencesOfAFile(m_before); }

 private:
  const int m_before = os::fileCalls().setPatiencesOfAFile(0);
};

TEST_F(PosixFileAheadWithoutTime, IsNotReadOutOfItsTurn) {
  const std::string path = file("image", "12345");
  const FileAhead first(path, kMost);
  FileAhead second(file("other", "67"), kMost);
  const test::LogCapture log;
  const FileAhead::InForce inForce(&second);
  expectNotOpened(this->path("other"));
  EXPECT_THAT(log.messages("os::getFileSize"),
              ElementsAre("'" + this->path("other") +
                          "' was not read, since too many files were read at the same time; try "
                          "again later"));
}

TEST_F(PosixFileAheadWithoutTime, IsReadThoughAnotherFileSystemHasItsTurn) {
  const std::string elsewhere = "/proc/version";  // regular, and empty by its status
  ASSERT_TRUE(std::filesystem::is_regular_file(elsewhere));
  const std::string path = file("image", "12345");
  std::vector<std::unique_ptr<FileAhead>> others;
  while (others.size() < FileAhead::kMostAtATime) {
    others.push_back(std::make_unique<FileAhead>(path, kMost));
  }
  FileAhead ahead(elsewhere, kMost);
  const FileAhead::InForce inForce(&ahead);
  EXPECT_EQ(os::getFileSize(elsewhere), 0);
}

TEST_F(PosixFileAheadWithoutTime, TakesNoTurnForWhatItDoesNotRead) {
  const std::string path = file("image", "12345");
  const FileAhead unread(path, 4);
  const FileAhead directory(m_directory.path().string(), kMost);
  FileAhead ahead(path, kMost);
  const FileAhead::InForce inForce(&ahead);
  EXPECT_EQ(os::getFileSize(path), 5);
}

TEST_F(PosixFileAhead, WaitsForItsTurnAndLooksThen) {
  const std::string path = file("image", "12345");
  auto first = std::make_unique<FileAhead>(path, kMost);
  std::thread next([&path] { EXPECT_EQ(contentOf(FileAhead(path, kMost)), "another"); });
  file("image", "another");
  first.reset();
  next.join();
}

}  // namespace
