#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "midapi/FlashBackend.h"
#include "midapi/Kernel/StagedFirmware.h"
#include "tests/midapi/WatchedFileSystem.h"
#include "tests/support/TempDirectory.h"

namespace {

using ma::AdapterAddress;
using ma::FlashFault;
using ma::StagedFirmware;
using ma::sweepStagedFirmware;
using ma::whyNotStageable;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::UnorderedElementsAre;

constexpr AdapterAddress kAdapter{0, 3, 0};
const std::vector<std::uint8_t> kContent(1000, 'p');

class StagedFirmwareTest : public testing::Test {
 protected:
  std::vector<std::string> staged() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_folder.path())) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }
  std::string failure(const std::filesystem::path& folder) {
    try {
      const StagedFirmware firmware(m_files, folder, kAdapter, kContent);
    } catch (const FlashFault& fault) {
      return fault.what();
    }
    return {};
  }

  test::TempDirectory m_folder;
  test::WatchedFileSystem m_files;
};

TEST_F(StagedFirmwareTest, IsThereUnderItsNameForItsScope) {
  {
    const StagedFirmware firmware(m_files, m_folder.path(), kAdapter, kContent);
    EXPECT_THAT(firmware.name(), MatchesRegex("quorvel-0000-03-00\\.fw\\.new-[0-9a-f]{16}"));
    EXPECT_THAT(staged(), ElementsAre(firmware.name()));
    EXPECT_EQ(test::readBytes(m_folder.path() / firmware.name()), kContent);
  }
  EXPECT_THAT(staged(), IsEmpty());
}

TEST_F(StagedFirmwareTest, IsFoundByTheAdapterThatItIsFor) {
  m_folder.write("quorvel-0000-04-00.fw.new-0123456789abcdef", std::string("x"));
  m_folder.write("quorvel-0000-05-00.fw", std::string("x"));
  m_folder.write("quorvel-.fw.new-0123456789abcdef", std::string("x"));
  m_folder.write("quorvel-other.fw.new-0123456789abcdef", std::string("x"));
  m_folder.write("other-0000-06-00.fw.new-0123456789abcdef", std::string("x"));
  m_folder.write("quorvel-0000-07-00.bin.new-0123456789abcdef", std::string("x"));
  EXPECT_THAT(findStagedFirmware(m_files, m_folder.path()), ElementsAre(AdapterAddress{0, 4, 0}));
  EXPECT_THAT(findStagedFirmware(m_files, m_folder.path() / "none"), IsEmpty());
}

TEST_F(StagedFirmwareTest, IsSweptAwayWhereAProcessDied) {
  const std::string left = "quorvel-0000-03-00.fw.new-0123456789abcdef";
  const std::string ofAnother = "quorvel-0000-04-00.fw.new-0123456789abcdef";
  const std::string ofAPackage = "quorvel-0000-03-00.fw";
  for (const std::string& name : {left, ofAnother, ofAPackage}) {
    m_folder.write(name, std::string("x"));
  }
  sweepStagedFirmware(m_files, m_folder.path(), kAdapter);
  EXPECT_THAT(staged(), UnorderedElementsAre(ofAnother, ofAPackage));
  sweepStagedFirmware(m_files, m_folder.path() / "none", kAdapter);
}

TEST_F(StagedFirmwareTest, NamesTheFolderThatCannotBeWritten) {
  const std::filesystem::path missing = m_folder.path() / "none";
  EXPECT_THAT(failure(missing), HasSubstr("cannot be put into " + missing.string()));
  EXPECT_THAT(failure(missing),
              HasSubstr("name another folder of the kernel's with FirmwareFolder"));
}

TEST_F(StagedFirmwareTest, LeavesNothingOnAFullDisk) {
  m_files.beforeStep = [](const std::string& step, const std::filesystem::path& path) {
    if (step == "append") {
      test::WatchedFileSystem::failAsFullDisk("write", path);
    }
  };
  EXPECT_THAT(failure(m_folder.path()), HasSubstr("No space left on device"));
  EXPECT_THAT(staged(), IsEmpty());
}

TEST_F(StagedFirmwareTest, SaysBeforehandWhyItCannotBe) {
  EXPECT_EQ(whyNotStageable(m_folder.path()), "");
  const std::filesystem::path missing = m_folder.path() / "none";
  EXPECT_EQ(whyNotStageable(missing),
            "firmware cannot be put into " + missing.string() +
                ", where the kernel looks for it: No such file or directory; let it be written, or "
                "name another folder of the kernel's with FirmwareFolder");
  EXPECT_THAT(whyNotStageable(m_folder.write("file", std::string("x"))),
              HasSubstr("Not a directory"));
}

TEST_F(StagedFirmwareTest, IsNotPutWhereOthersMayChangeIt) {
  using std::filesystem::perms;
  std::filesystem::permissions(m_folder.path(), perms::all);
  EXPECT_THAT(whyNotStageable(m_folder.path()), HasSubstr("other users may write there"));
  std::filesystem::permissions(m_folder.path(), perms::owner_all | perms::group_read);
  EXPECT_EQ(whyNotStageable(m_folder.path()), "");
}

}  // namespace
