#include <gtest/gtest.h>
#include <string>
#include <windows.h>

#include "midapi/Windows/FolderTree.h"
#include "platform/Windows/SystemPath.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Windows/DirectoryLink.h"

namespace {

namespace fs = std::filesystem;
using ma::removeTree;

class FolderTree : public testing::Test {
 protected:
  test::TempDirectory m_directory;
};

TEST_F(FolderTree, IsRemovedWithAllThatIsInIt) {
  m_directory.write("tree/a/file", std::string());
  m_directory.write("tree/file", std::string());
  removeTree(m_directory.path() / "tree");
  EXPECT_TRUE(fs::is_empty(m_directory.path()));
}

TEST_F(FolderTree, IsRemovedThoughItMayOnlyBeRead) {
  const fs::path file = m_directory.write("tree/file", std::string());
  ASSERT_NE(SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY), FALSE);
  removeTree(m_directory.path() / "tree");
  EXPECT_TRUE(fs::is_empty(m_directory.path()));
}

TEST_F(FolderTree, LeavesWhatALinkLeadsTo) {
  const fs::path kept = m_directory.write("kept/a/file", std::string("kept"));
  m_directory.write("tree/file", std::string());
  const fs::path target = m_directory.path() / "kept";
  const test::DirectoryLink inside(m_directory.path() / "tree" / "link", target);
  const test::DirectoryLink outside(m_directory.path() / "link", target);

  removeTree(m_directory.path() / "tree");
  removeTree(m_directory.path() / "link");
  EXPECT_EQ(test::readText(kept), "kept");
  EXPECT_FALSE(fs::exists(m_directory.path() / "tree" / "file"));
}

TEST_F(FolderTree, MayHavePathsOfAnyLength) {
  fs::path folder = m_directory.path() / "tree";
  fs::create_directory(folder);
  for (const char letter : {'a', 'b', 'c'}) {
    folder /= std::string(150, letter);
    ASSERT_NE(CreateDirectoryW(platform::toSystemPath(folder).c_str(), nullptr), FALSE);
  }
  removeTree(m_directory.path() / "tree");
  EXPECT_TRUE(fs::is_empty(m_directory.path()));
}

}  // namespace
