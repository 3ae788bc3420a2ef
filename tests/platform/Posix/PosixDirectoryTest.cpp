// Links in directories.

#include <filesystem>
#include <gmock/gmock.h>
#include <map>
#include <string>

#include "platform/Directory.h"
#include "tests/support/TempDirectory.h"

namespace {

using testing::ElementsAre;
using testing::Pair;

TEST(PosixDirectory, TellsLinksByWhatTheyLeadTo) {
  const test::TempDirectory directory;
  directory.write("folder/file", std::string());
  std::filesystem::create_symlink("folder", directory.path() / "toFolder");
  std::filesystem::create_symlink("none", directory.path() / "toNone");
  std::map<std::string, std::pair<bool, bool>> found;
  EXPECT_FALSE(
      platform::forEachEntry(directory.path(), [&found](const platform::DirectoryEntry& entry) {
        found[entry.name.string()] = {entry.isDirectory, entry.isLink};
        return true;
      }));
  EXPECT_THAT(found,
              ElementsAre(Pair("folder", Pair(true, false)), Pair("toFolder", Pair(true, true)),
                          Pair("toNone", Pair(false, true))));
}

}  // namespace
