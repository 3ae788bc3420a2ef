#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "platform/FileLook.h"
#include "tests/support/TempDirectory.h"

namespace {

using platform::areOneFile;
using platform::FileKind;
using platform::lookAtFile;

class FileLook : public testing::Test {
 protected:
  test::TempDirectory m_directory;
  const std::filesystem::path m_file = m_directory.write("file", std::string("12345"));
  const std::filesystem::path m_none = m_directory.path() / "none";
};

TEST_F(FileLook, TellsTheSizeOfAFile) {
  EXPECT_EQ(lookAtFile(m_file).kind, FileKind::Regular);
  EXPECT_EQ(lookAtFile(m_file).size, 5U);
}

TEST_F(FileLook, TellsDirectoriesAndWhatIsMissing) {
  EXPECT_EQ(lookAtFile(m_directory.path()).kind, FileKind::Directory);
  EXPECT_EQ(lookAtFile(m_none).kind, FileKind::Missing);
  EXPECT_EQ(lookAtFile(m_none / "none").kind, FileKind::Missing);
}

TEST_F(FileLook, TellsWhetherTwoPathsLeadToOneFile) {
  const auto other = m_directory.write("folder/file", std::string("12345"));
  EXPECT_TRUE(areOneFile(m_file, other.parent_path() / ".." / "file"));
  EXPECT_FALSE(areOneFile(m_file, other));
  EXPECT_FALSE(areOneFile(m_file, m_none));
  EXPECT_FALSE(areOneFile(m_none, m_none));
}

}  // namespace
