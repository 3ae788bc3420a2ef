// URIs of files that only Windows has.

#include <gmock/gmock.h>

#include "Os/Uri.h"
#include "tests/support/TempDirectory.h"

namespace {

using utils::Uri;

TEST(WindowsUri, ExistsForAPathWithADriveLetterInEitherSpelling) {
  const test::TempDirectory directory;
  const std::filesystem::path file = directory.write("image.bin", std::string("x"));
  ASSERT_EQ(file.string().substr(1, 2), ":\\");

  EXPECT_TRUE(Uri("file://" + file.string()).exists());
  EXPECT_TRUE(Uri("file://" + file.generic_string()).exists());
}

TEST(WindowsUri, DoesNotExistWithASlashBeforeTheDrive) {
  const test::TempDirectory directory;
  const std::filesystem::path file = directory.write("image.bin", std::string("x"));

  EXPECT_FALSE(Uri("file:///" + file.generic_string()).exists());
}

TEST(WindowsUri, DoesNotExistForADevice) {
  EXPECT_FALSE(Uri("file://NUL").exists());
  EXPECT_FALSE(Uri("file://CON").exists());
}

}  // namespace
