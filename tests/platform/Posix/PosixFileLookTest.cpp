// What links lead to, and devices.

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "platform/FileLook.h"
#include "tests/support/TempDirectory.h"

namespace {

using platform::FileKind;
using platform::lookAtFile;

TEST(PosixFileLook, FollowsLinks) {
  const test::TempDirectory directory;
  const auto file = directory.write("file", std::string("12345"));
  const auto link = directory.path() / "link";
  std::filesystem::create_symlink("file", link);
  EXPECT_EQ(lookAtFile(link).size, 5U);
  EXPECT_TRUE(platform::areOneFile(file, link));
  std::filesystem::remove(file);
  EXPECT_EQ(lookAtFile(link).kind, FileKind::Missing);
}

TEST(PosixFileLook, TellsDevices) {
  EXPECT_EQ(lookAtFile("/dev/null").kind, FileKind::Other);
}

}  // namespace
