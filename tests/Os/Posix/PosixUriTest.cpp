// URIs of files that only POSIX has.

#include <gmock/gmock.h>

#include "Os/Uri.h"
#include "tests/support/TempDirectory.h"

namespace {

using utils::Uri;

TEST(PosixUri, MayHaveAColonInItsName) {
  const test::TempDirectory directory;
  const std::filesystem::path file = directory.write("a:b:c.bin", std::string("x"));

  EXPECT_TRUE(Uri("file://" + file.string()).exists());
}

TEST(PosixUri, DoesNotExistForADevice) {
  EXPECT_FALSE(Uri("file:///dev/zero").exists());
}

}  // namespace
