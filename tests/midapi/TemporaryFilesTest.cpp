#include <chrono>
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "midapi/TemporaryFiles.h"
#include "tests/midapi/WatchedFileSystem.h"
#include "tests/support/FakeClock.h"
#include "tests/support/TempDirectory.h"

namespace {

using ma::baseOfTemporary;
using ma::FileFault;
using ma::putInPlace;
using ma::replaceContent;
using ma::sweepTemporaryFiles;
using ma::sweepTemporaryFolders;
using ma::temporaryName;
using ma::TemporaryPath;
using ma::waitForLock;
using Bytes = std::vector<std::uint8_t>;
using test::TempDirectory;
using test::WatchedFileSystem;
using testing::HasSubstr;
using testing::Optional;
using testing::StartsWith;
using testing::UnorderedElementsAre;

template <class Operation>
std::string faultOf(Operation operation) {
  try {
    operation();
  } catch (const FileFault& fault) {
    return fault.what();
  }
  return "no fault";
}

TEST(TemporaryFiles, HaveNamesThatNobodyGuesses) {
  const std::filesystem::path path = std::filesystem::path("folder") / "flash.rom";
  const auto name = temporaryName(path);
  EXPECT_EQ(name.parent_path(), "folder");
  EXPECT_THAT(name.filename().string(), StartsWith("flash.rom.new-"));
  EXPECT_EQ(name.filename().string().size(), std::string("flash.rom.new-0123456789abcdef").size());
  EXPECT_NE(name, temporaryName(path));
}

TEST(TemporaryFiles, TellWhatTheyStandFor) {
  EXPECT_THAT(baseOfTemporary(temporaryName("flash.rom")), Optional(std::string("flash.rom")));
  EXPECT_THAT(baseOfTemporary("flash.rom.new-0123456789abcdef"),
              Optional(std::string("flash.rom")));
  EXPECT_THAT(baseOfTemporary("flash.rom.new"), Optional(std::string("flash.rom")));
  EXPECT_THAT(baseOfTemporary(".0000-03-00.new-12abcdef"), Optional(std::string(".0000-03-00")));
}

TEST(TemporaryFiles, AreNotTakenForOthers) {
  for (const char* name : {"", "flash.rom", ".new", "flash.rom.new-", "flash.rom.new-12",
                           "flash.rom.new-0123456789abcdeg", "flash.rom.new-0123456789ABCDEF",
                           "flash.rom.new-0123456789abcdef0", "flash.rom.newer", "flash.rom.old"}) {
    EXPECT_EQ(baseOfTemporary(name), std::nullopt) << name;
  }
}

class PutInPlace : public testing::Test {
 protected:
  PutInPlace() {
    m_directory.write("file", std::string("old"));
    m_directory.write("file.new", std::string("new"));
  }
  // Returns what went wrong.
  std::string put() {
    return faultOf([this] {
      TemporaryPath temporary(m_files, m_directory.path() / "file.new");
      putInPlace(m_files, temporary, m_directory.path() / "file");
    });
  }
  [[nodiscard]] std::string content() const { return test::readText(m_directory.path() / "file"); }

  WatchedFileSystem m_files;
  TempDirectory m_directory;
};

TEST_F(PutInPlace, ReplacesAFile) {
  EXPECT_EQ(put(), "no fault");
  EXPECT_EQ(content(), "new");
}

TEST_F(PutInPlace, FailsWhereTheOldFileStays) {
  m_files.beforeStep = WatchedFileSystem::failAsFullDisk;
  EXPECT_THAT(put(), HasSubstr("No space left"));
  EXPECT_EQ(content(), "old");
  EXPECT_FALSE(m_files.exists(m_directory.path() / "file.new"));
}

TEST_F(PutInPlace, FailsWhereTheNewFileHasBeenTakenAway) {
  m_files.beforeReplace = [this] { std::filesystem::remove(m_directory.path() / "file.new"); };
  EXPECT_THAT(put(), HasSubstr("No such file"));
  EXPECT_EQ(content(), "old");
}

TEST_F(PutInPlace, DoesNotFailWhereTheDiskIsSlowToConfirm) {
  m_files.afterStep = WatchedFileSystem::failAsFullDisk;
  EXPECT_EQ(put(), "no fault");
  EXPECT_EQ(content(), "new");
}

class SweepTemporaries : public testing::Test {
 protected:
  static bool isOurs(const std::string& base) { return base == "ours"; }

  WatchedFileSystem m_files;
  TempDirectory m_directory;
};

TEST_F(SweepTemporaries, RemovesOurFilesAndNothingElse) {
  for (const char* name :
       {"ours", "ours.new-0123456789abcdef", "ours.new", "theirs.new", "ours.new-5"}) {
    m_directory.write(name, std::string("x"));
  }
  m_directory.write("ours.new-12345678/file", std::string("x"));
  sweepTemporaryFiles(m_files, m_directory.path(), isOurs);
  EXPECT_THAT(m_files.entries(m_directory.path(), 10),
              UnorderedElementsAre("ours", "theirs.new", "ours.new-5", "ours.new-12345678"));
}

TEST_F(SweepTemporaries, RemovesOurFoldersWithTheirContent) {
  m_directory.write("ours.new-12345678/file", std::string("x"));
  m_directory.write("theirs.new-12345678/file", std::string("x"));
  sweepTemporaryFolders(m_files, m_directory.path(), isOurs);
  EXPECT_THAT(m_files.entries(m_directory.path(), 10), UnorderedElementsAre("theirs.new-12345678"));
}

TEST_F(SweepTemporaries, MindsNoFailure) {
  EXPECT_NO_THROW(sweepTemporaryFiles(m_files, m_directory.path() / "none", isOurs));
}

class WaitForLock : public testing::Test {
 protected:
  WatchedFileSystem m_files;
  TempDirectory m_directory;
  test::FakeClock m_clock;
  const std::filesystem::path m_path = m_directory.path() / "lock";
};

TEST_F(WaitForLock, TakesAFreeLockAtOnce) {
  EXPECT_NE(waitForLock(m_files, m_path, m_clock), nullptr);
  EXPECT_EQ(m_clock.slept(), std::chrono::milliseconds(0));
}

TEST_F(WaitForLock, WaitsForItsHolder) {
  auto holder = m_files.lock(m_path);
  m_clock.afterEachSleep([&](int count) {
    if (count == 3) {
      holder.reset();
    }
  });
  EXPECT_NE(waitForLock(m_files, m_path, m_clock), nullptr);
  EXPECT_EQ(m_clock.slept(), std::chrono::milliseconds(30));
}

TEST_F(WaitForLock, GivesUpInTheEnd) {
  const auto holder = m_files.lock(m_path);
  EXPECT_EQ(waitForLock(m_files, m_path, m_clock), nullptr);
  EXPECT_EQ(m_clock.slept(), std::chrono::seconds(2));
}

class ReplaceContent : public testing::Test {
 protected:
  std::string replaceFault() {
    return faultOf([&] { replaceContent(m_files, m_path, Bytes(3, 'n')); });
  }
  bool hasTemporary() { return m_files.entries(m_directory.path(), 10).size() != 1; }

  TempDirectory m_directory;
  WatchedFileSystem m_files;
  std::filesystem::path m_path = m_directory.write("file", std::string("old"));
};

TEST_F(ReplaceContent, LeavesTheNewContentAndNoTemporary) {
  EXPECT_EQ(replaceFault(), "no fault");
  EXPECT_EQ(test::readText(m_path), "nnn");
  EXPECT_FALSE(hasTemporary());
}

TEST_F(ReplaceContent, UsesNothingThatIsThereAlready) {
  m_directory.write("file.new", std::string("somebody's"));
  EXPECT_EQ(replaceFault(), "no fault");
  EXPECT_EQ(test::readText(m_path), "nnn");
  EXPECT_EQ(test::readText(m_directory.path() / "file.new"), "somebody's");
}

TEST_F(ReplaceContent, LeavesTheOldContentWhenItFails) {
  m_files.beforeReplace = [&] { WatchedFileSystem::failAsFullDisk("replace", m_path); };
  EXPECT_THAT(replaceFault(), HasSubstr("No space left"));
  EXPECT_EQ(test::readText(m_path), "old");
  EXPECT_FALSE(hasTemporary());
}

TEST_F(ReplaceContent, ShowsReadersTheOldContentUntilTheLastMoment) {
  m_files.beforeReplace = [&] { EXPECT_EQ(test::readText(m_path), "old"); };
  EXPECT_EQ(replaceFault(), "no fault");
}

}  // namespace
