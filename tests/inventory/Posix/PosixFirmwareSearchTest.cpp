// What is remembered of files, where the platform tells whether they have changed, and what is not
// waited for.

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/Os/HungDirectory.h"
#include "tests/inventory/FirmwareFilesFixture.h"

namespace {

namespace fs = std::filesystem;

using test::Bytes;
using testing::ElementsAre;
using testing::IsEmpty;

class PosixFirmwareSearch : public test::FirmwareFilesFixture {
 protected:
  // Returns how many files one look reads.
  std::size_t countRead() {
    static_cast<void>(find());
    return m_log.messages("os::readFile").size() / 2;  // one reading has two records
  }
  // A file has to be left alone for a moment before it is known by its times.
  void awaitRemembered() {
    EXPECT_TRUE(test::waitUntil([this] { return countRead() == 0; }));
  }
};

TEST_F(PosixFirmwareSearch, ReadsAFileOnce) {
  const std::string path = makeFile("first/a.rom", firmware(1));
  makeFile("first/text", Bytes(100, 'x'));
  EXPECT_EQ(countRead(), 2u);
  awaitRemembered();

  EXPECT_EQ(countRead(), 0u);
  EXPECT_THAT(find(), ElementsAre(path));
}

TEST_F(PosixFirmwareSearch, ReadsAFileThatHasChanged) {
  makeFile("first/a.rom", firmware(1));
  const std::string other = makeFile("first/b.rom", firmware(1));
  awaitRemembered();

  makeFile("first/a.rom", Bytes(firmware(1).size(), 'x'));
  EXPECT_EQ(countRead(), 1u);
  EXPECT_THAT(find(), ElementsAre(other));
}

TEST_F(PosixFirmwareSearch, ReadsAFileThatStandsInThePlaceOfAnother) {
  makeFile("first/a.rom", firmware(1));
  makeFile("second/b.rom", firmware(2));
  awaitRemembered();

  fs::rename(secondDirectory() / "b.rom", firstDirectory() / "a.rom");
  static_cast<void>(find());
  EXPECT_EQ(m_files.find().at(0)->description.version, "2.0");
}

// The kernel says of its own files that they have a page, whatever is in them.
TEST_F(PosixFirmwareSearch, LeavesAFileOutThatHasLessThanItsSize) {
  const fs::path shorter = "/sys/devices/system/cpu/online";
  if (!fs::exists(shorter)) {
    GTEST_SKIP() << "this system has no such file";
  }
  const fs::path link = firstDirectory() / "a.rom";
  fs::create_symlink(shorter, link);
  const std::string there = std::to_string(test::readText(shorter).size());
  EXPECT_THAT(find(), IsEmpty());
  EXPECT_THAT(problems(), ElementsAre("Firmware file '" + link.string() + "' is left out: only " +
                                      there + " of its " + std::to_string(fs::file_size(shorter)) +
                                      " bytes could be read"));
}

// Settings whose directories answered when they were asked for.
class AnsweringConfig final : public utils::QuorvelConfig {
 public:
  explicit AnsweringConfig(std::vector<std::string> directories)
      : m_directories(std::move(directories)) {}

  std::vector<std::string> getFWFilePaths() override { return m_directories; }

 private:
  const std::vector<std::string> m_directories;
};

TEST_F(PosixFirmwareSearch, LeavesADirectoryOutThatDoesNotAnswer) {
  const std::string away = makeFile("first/a.rom", firmware(1));
  const std::string here = makeFile("second/b.rom", firmware(1));
  const AnsweringConfig config({firstDirectory().string(), secondDirectory().string()});
  {
    const test::HungDirectory hung(firstDirectory().string());

    EXPECT_EQ(inventory::readFirmwareFile(away), std::nullopt);
    EXPECT_THAT(find(), ElementsAre(here));
    EXPECT_THAT(problems(), ElementsAre("Firmware directory '" + firstDirectory().string() +
                                        "' cannot be read: its file system does not answer"));
  }
  EXPECT_EQ(find().size(), 2u);
  EXPECT_THAT(problems(), IsEmpty());
}

}  // namespace
