#include <gmock/gmock.h>
#include <string>
#include <system_error>

#include "midapi/Posix/FolderNames.h"
#include "tests/support/TempDirectory.h"

namespace {

using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

TEST(FolderNames, AreThoseInTheFolder) {
  const test::TempDirectory directory;
  directory.write("one", std::string("x"));
  directory.write("two/three", std::string("x"));
  directory.write(".hidden", std::string("x"));
  std::error_code error = std::make_error_code(std::errc::io_error);
  EXPECT_THAT(ma::readFolderNames(directory.path(), error),
              UnorderedElementsAre("one", "two", ".hidden"));
  EXPECT_FALSE(error);
  EXPECT_THAT(ma::readFolderNames(directory.path(), error, 2), SizeIs(2));
  EXPECT_THAT(ma::readFolderNames(directory.path(), error, 0), IsEmpty());
  EXPECT_FALSE(error);
}

TEST(FolderNames, SayWhyTheyCannotBeRead) {
  const test::TempDirectory directory;
  std::error_code error;
  EXPECT_THAT(ma::readFolderNames(directory.path() / "none", error), IsEmpty());
  EXPECT_EQ(error, std::errc::no_such_file_or_directory);
  EXPECT_THAT(ma::readFolderNames(directory.write("file", std::string("x")), error), IsEmpty());
  EXPECT_EQ(error, std::errc::not_a_directory);
}

}  // namespace
