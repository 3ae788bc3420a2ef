#include <gmock/gmock.h>
#include <map>
#include <string>

#include "platform/Directory.h"
#include "tests/support/TempDirectory.h"

namespace {

using platform::DirectoryEntry;
using platform::forEachEntry;
using testing::ElementsAre;
using testing::Pair;

TEST(Directory, HasFilesAndDirectories) {
  const test::TempDirectory directory;
  directory.write("file", std::string());
  directory.write("folder/file", std::string());
  std::map<std::string, bool> found;
  EXPECT_FALSE(forEachEntry(directory.path(), [&found](const DirectoryEntry& entry) {
    found[entry.name.string()] = entry.isDirectory;
    EXPECT_FALSE(entry.isLink);
    return true;
  }));
  EXPECT_THAT(found, ElementsAre(Pair("file", false), Pair("folder", true)));
}

TEST(Directory, EndsWhereNoMoreIsWanted) {
  const test::TempDirectory directory;
  directory.write("one", std::string());
  directory.write("two", std::string());
  int count = 0;
  EXPECT_FALSE(forEachEntry(directory.path(), [&count](const DirectoryEntry&) {
    ++count;
    return false;
  }));
  EXPECT_EQ(count, 1);
}

TEST(Directory, MayBeEmpty) {
  const test::TempDirectory directory;
  EXPECT_FALSE(forEachEntry(directory.path(), [](const DirectoryEntry&) {
    ADD_FAILURE();
    return true;
  }));
}

TEST(Directory, IsNoneThatIsMissingOrAFile) {
  const test::TempDirectory directory;
  const auto any = [](const DirectoryEntry&) { return true; };
  EXPECT_EQ(forEachEntry(directory.path() / "none", any), std::errc::no_such_file_or_directory);
  EXPECT_EQ(forEachEntry(directory.write("file", std::string()), any), std::errc::not_a_directory);
}

}  // namespace
