#include <filesystem>
#include <gmock/gmock.h>
#include <string>

#include "Os/Files.h"
#include "Utils/Exception.h"
#include "tests/Os/FilesFixture.h"
#include "tests/Os/Platform.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"

namespace {

using test::IsRecordOf;
using test::LogCapture;
using test::LogLevel;
using test::ThrowsExactly;
using testing::ElementsAre;

using Files = test::FilesFixture;

constexpr std::uintmax_t kTwoGiB = std::uintmax_t{1} << 31;

TEST_F(Files, HaveTheirSize) {
  EXPECT_EQ(os::getFileSize(file("full", "12345")), 5);
  EXPECT_EQ(os::getFileSize(file("empty", "")), 0);
}

TEST_F(Files, LogTheirSize) {
  const std::string path = file("full", "12345");
  const LogCapture log;
  static_cast<void>(os::getFileSize(path));

  EXPECT_THAT(log.records(),
              ElementsAre(IsRecordOf(test::kFilesSource, LogLevel::Debug, "os::getFileSize",
                                     "Output size of Provider file: 5")));
}

TEST_F(Files, MayBeJustBelowTwoGiB) {
  EXPECT_EQ(os::getFileSize(sparseFile("large", kTwoGiB - 1)), 2147483647);
}

TEST_F(Files, OfTwoGiBOrMoreAreNotOpened) {
  for (const std::uintmax_t size : {kTwoGiB, 2 * kTwoGiB + 5}) {
    const std::string path = sparseFile("huge", size);
    EXPECT_THAT([&] { static_cast<void>(os::getFileSize(path)); },
                ThrowsExactly<utils::Exception>("Could not open the file '" + path + "'"));
  }
}

TEST_F(Files, ThatAreMissingAreNotOpened) {
  expectNotOpened(path("absent"));
  expectNotOpened(path("absent/file"));
  expectNotOpened(file("full", "x") + "/below");
  expectNotOpened("");
  expectNotOpened(path("100%s%n"));
}

TEST_F(Files, AreToldFromDirectories) {
  expectDirectory(folder("folder"));
}

TEST_F(Files, AreReadUpToACount) {
  const std::string path = file("full", std::string("ab\0de", 5));

  EXPECT_EQ(read(path, 0), "");
  EXPECT_EQ(read(path, 2), "ab");
  EXPECT_EQ(read(path, 5), std::string("ab\0de", 5));
  EXPECT_EQ(read(path, 100), std::string("ab\0de", 5));
}

TEST_F(Files, AreReadWhole) {
  std::string content(3'000'000, 'x');
  content.back() = 'y';

  EXPECT_EQ(read(file("long", content), 3'000'000), content);
}

TEST_F(Files, LogHowMuchIsRead) {
  const std::string path = file("100%s", "12345");
  const LogCapture log;
  static_cast<void>(read(path, 8));

  EXPECT_THAT(
      log.records(),
      ElementsAre(IsRecordOf(test::kFilesSource, LogLevel::Debug, "os::readFile",
                             "Reading 8 bytes from file " + path),
                  IsRecordOf(test::kFilesSource, LogLevel::Debug, "os::readFile", "Read 5 bytes")));
}

TEST_F(Files, LogThatNothingIsReadFromAMissingOne) {
  const LogCapture log;
  static_cast<void>(read(path("absent"), 8));

  EXPECT_THAT(log.messages("os::readFile"),
              ElementsAre("Reading 8 bytes from file " + path("absent"), "Read 0 bytes"));
}

TEST_F(Files, AndDirectoriesAreToldApart) {
  const std::string directory = folder("folder");

  EXPECT_TRUE(os::isThisADir(directory));
  EXPECT_FALSE(os::isThisADir(file("full", "x")));
  EXPECT_FALSE(os::isThisADir(path("absent")));
  EXPECT_FALSE(os::isThisADir(""));
}

TEST_F(Files, LogTheTestForADirectory) {
  const std::string directory = folder("folder");
  constexpr const char* kFunction = "os::isThisADir";
  LogCapture log;
  static_cast<void>(os::isThisADir(directory));

  EXPECT_THAT(
      log.records(),
      ElementsAre(
          IsRecordOf(test::kFilesSource, LogLevel::Debug, kFunction,
                     "Checking if the declared path " + directory + " points to a directory"),
          IsRecordOf(test::kFilesSource, LogLevel::Debug, kFunction, "It is a directory")));
  log.clear();
  static_cast<void>(os::isThisADir(path("absent")));
  EXPECT_THAT(log.messages(kFunction), ElementsAre("Checking if the declared path " +
                                                   path("absent") + " points to a directory"));
}

}  // namespace
