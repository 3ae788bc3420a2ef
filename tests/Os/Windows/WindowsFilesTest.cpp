// Files and directories with what only Windows gives them.

#include <gmock/gmock.h>
#include <windows.h>

#include "Os/Files.h"
#include "tests/Os/FilesFixture.h"

namespace {

class WindowsFiles : public test::FilesFixture {
 protected:
  static std::string withAttributes(const std::string& path, DWORD attributes) {
    EXPECT_NE(SetFileAttributesA(path.c_str(), attributes), FALSE);
    return path;
  }
};

TEST_F(WindowsFiles, AreFoundByPathsWithEitherSeparator) {
  const std::string native = file("full", "12345");
  const std::string generic = (m_directory.path() / "full").generic_string();
  ASSERT_NE(native, generic);

  EXPECT_EQ(os::getFileSize(native), 5);
  EXPECT_EQ(os::getFileSize(generic), 5);
  EXPECT_EQ(read(generic, 16), "12345");
}

TEST_F(WindowsFiles, AreReadWithoutAChangeOfTheirLineEnds) {
  EXPECT_EQ(read(file("text",
                      "a\r\nb\x1A"
                      "c"),
                 16),
            "a\r\nb\x1A"
            "c");
}

TEST_F(WindowsFiles, AreNotFoundByPatterns) {
  const std::string made = file("full", "12345");
  ASSERT_EQ(os::getFileSize(made), 5);

  expectNotOpened(path("f*"));
  expectNotOpened(path("ful?"));
  EXPECT_FALSE(os::isThisADir(m_directory.path().string() + "*"));
}

TEST_F(WindowsFiles, AreNotDevices) {
  expectNotOpened("NUL");
}

TEST_F(WindowsFiles, MayBeReadOnly) {
  const std::string made = withAttributes(file("full", "12345"), FILE_ATTRIBUTE_READONLY);

  EXPECT_EQ(os::getFileSize(made), 5);
  EXPECT_EQ(read(made, 16), "12345");
  withAttributes(made, FILE_ATTRIBUTE_NORMAL);
}

TEST_F(WindowsFiles, AreDirectoriesWithoutAnyFurtherAttribute) {
  const std::string hidden = withAttributes(folder("hidden"), FILE_ATTRIBUTE_HIDDEN);

  EXPECT_FALSE(os::isThisADir(hidden));
  expectNotOpened(hidden);
  EXPECT_TRUE(os::isThisADir(folder("plain")));
}

TEST_F(WindowsFiles, AreNotFoundBehindATrailingSeparator) {
  const std::string directory = folder("folder");

  expectNotOpened(directory + "\\");
  EXPECT_FALSE(os::isThisADir(directory + "\\"));
}

}  // namespace
