// Links, and paths that are too long for std::filesystem.

#include <gtest/gtest.h>
#include <string>
#include <windows.h>

#include "platform/Directory.h"
#include "platform/Windows/SystemPath.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Windows/DirectoryLink.h"

namespace {

namespace fs = std::filesystem;
using platform::DirectoryEntry;
using platform::forEachEntry;

TEST(WindowsDirectory, TellsLinks) {
  const test::TempDirectory directory;
  directory.write("folder/file", std::string());
  const test::DirectoryLink made(directory.path() / "link", directory.path() / "folder");
  int count = 0;
  EXPECT_FALSE(forEachEntry(directory.path(), [&count](const DirectoryEntry& entry) {
    EXPECT_TRUE(entry.isDirectory);
    EXPECT_EQ(entry.isLink, entry.name == "link");
    ++count;
    return true;
  }));
  EXPECT_EQ(count, 2);
}

TEST(WindowsDirectory, MayHaveAPathOfAnyLength) {
  const test::TempDirectory directory;
  fs::path folder = directory.path();
  for (const char letter : {'a', 'b', 'c'}) {
    folder /= std::string(150, letter);
    ASSERT_NE(CreateDirectoryW(platform::toSystemPath(folder).c_str(), nullptr), FALSE);
  }
  int count = 0;
  EXPECT_FALSE(forEachEntry(folder.parent_path(), [&](const DirectoryEntry& entry) {
    EXPECT_EQ(entry.name, folder.filename());
    ++count;
    return true;
  }));
  EXPECT_EQ(count, 1);
  for (; folder != directory.path(); folder = folder.parent_path()) {
    EXPECT_NE(RemoveDirectoryW(platform::toSystemPath(folder).c_str()), FALSE);
  }
}

}  // namespace
