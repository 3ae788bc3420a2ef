#include <gmock/gmock.h>
#include <map>
#include <string>
#include <windows.h>

#include "midapi/Windows/FolderEntries.h"
#include "platform/Windows/SystemPath.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Windows/DirectoryLink.h"

namespace {

namespace fs = std::filesystem;
using ma::FolderEntry;
using ma::forEachEntry;
using ma::removeTree;
using testing::ElementsAre;
using testing::Pair;

class FolderEntries : public testing::Test {
 protected:
  // The entries by their names, with "folder" or "file", and "link" where they are one.
  std::map<std::string, std::string> entries() const {
    std::map<std::string, std::string> found;
    EXPECT_EQ(forEachEntry(m_directory.path(),
                           [&found](const FolderEntry& entry) {
                             found[entry.name.string()] =
                                 std::string(entry.isFolder ? "folder" : "file") +
                                 (entry.isLink ? ", link" : "");
                             return true;
                           }),
              0U);
    return found;
  }

  test::TempDirectory m_directory;
};

TEST_F(FolderEntries, AreFilesFoldersAndLinks) {
  m_directory.write("file", std::string());
  m_directory.write("folder/file", std::string());
  const test::DirectoryLink made(m_directory.path() / "link", m_directory.path() / "folder");
  EXPECT_THAT(entries(), ElementsAre(Pair("file", "file"), Pair("folder", "folder"),
                                     Pair("link", "folder, link")));
}

TEST_F(FolderEntries, EndWhereNoMoreAreWanted) {
  m_directory.write("one", std::string());
  m_directory.write("two", std::string());
  int count = 0;
  EXPECT_EQ(forEachEntry(m_directory.path(),
                         [&count](const FolderEntry&) {
                           ++count;
                           return false;
                         }),
            0U);
  EXPECT_EQ(count, 1);
}

TEST_F(FolderEntries, AreNoneOfAFolderThatIsMissing) {
  EXPECT_EQ(forEachEntry(m_directory.path() / "none", [](const FolderEntry&) { return true; }),
            DWORD{ERROR_PATH_NOT_FOUND});
}

TEST_F(FolderEntries, AreNoneOfAFile) {
  EXPECT_EQ(forEachEntry(m_directory.write("file", std::string()),
                         [](const FolderEntry&) { return true; }),
            DWORD{ERROR_DIRECTORY});
}

TEST_F(FolderEntries, AreRemovedWithAllThatIsInThem) {
  m_directory.write("tree/a/file", std::string());
  m_directory.write("tree/file", std::string());
  removeTree(m_directory.path() / "tree");
  EXPECT_THAT(entries(), testing::IsEmpty());
}

TEST_F(FolderEntries, AreRemovedThoughTheyMayOnlyBeRead) {
  const fs::path file = m_directory.write("tree/file", std::string());
  ASSERT_NE(SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY), FALSE);
  removeTree(m_directory.path() / "tree");
  EXPECT_THAT(entries(), testing::IsEmpty());
}

TEST_F(FolderEntries, OutsideStayWhereALinkLeadsToThem) {
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

TEST_F(FolderEntries, MayHavePathsOfAnyLength) {
  fs::path folder = m_directory.path() / "tree";
  fs::create_directory(folder);
  for (const char letter : {'a', 'b', 'c'}) {
    folder /= std::string(150, letter);
    ASSERT_NE(CreateDirectoryW(platform::toSystemPath(folder).c_str(), nullptr), FALSE);
  }
  int count = 0;
  EXPECT_EQ(forEachEntry(folder.parent_path(),
                         [&](const FolderEntry& entry) {
                           EXPECT_EQ(entry.name, folder.filename());
                           ++count;
                           return true;
                         }),
            0U);
  EXPECT_EQ(count, 1);
  removeTree(m_directory.path() / "tree");
  EXPECT_THAT(entries(), testing::IsEmpty());
}

}  // namespace
