// Links and pipes among the firmware files.

#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <sys/stat.h>

#include "tests/inventory/FirmwareFilesFixture.h"

namespace {

namespace fs = std::filesystem;

using PosixFirmwareFiles = test::FirmwareFilesFixture;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(PosixFirmwareFiles, LeaveOutDirectoriesAndFollowLinks) {
  makeFile("first/folder/a.rom", firmware(1));
  const std::string path = makeFile("second/b.rom", firmware(1));
  fs::create_symlink(path, firstDirectory() / "link.rom");

  EXPECT_THAT(find(), ElementsAre((firstDirectory() / "link.rom").string(), path));
  EXPECT_THAT(problems(), IsEmpty());
}

TEST_F(PosixFirmwareFiles, ReportDanglingLinksAndPipes) {
  const std::string link = (firstDirectory() / "link").string();
  fs::create_symlink("nowhere", link);
  const std::string pipe = (firstDirectory() / "pipe").string();
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const std::string good = makeFile("second/good.rom", firmware(1));

  EXPECT_THAT(find(), ElementsAre(good));
  EXPECT_THAT(problems(), ElementsAre(leftOut(link, "it cannot be found"),
                                      leftOut(pipe, "it is no regular file")));
}

}  // namespace
