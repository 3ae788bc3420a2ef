#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

#include "cli/ImageFile.h"
#include "client/Fault.h"
#include "tests/support/TempDirectory.h"

namespace {

TEST(PosixImageFile, SaysWhichFileIsClosedToTheUser) {
  if (geteuid() == 0) {
    GTEST_SKIP() << "root may read any file";
  }
  const test::TempDirectory directory;
  const std::filesystem::path file = directory.write("a.rom", std::string("abc"));
  std::filesystem::permissions(file, std::filesystem::perms::none);
  try {
    const cli::ImageFile image(file.string());
    FAIL() << "it was read";
  } catch (const client::Fault& fault) {
    EXPECT_EQ(std::string(fault.what()),
              "the file '" + file.string() + "' cannot be read; check its permissions");
  }
}

TEST(PosixImageFile, SaysWhatIsNoRegularFile) {
  EXPECT_EQ(cli::findFileFault("/dev/null"), "'/dev/null' is no regular file; name an image file");
}

}  // namespace
