// Files and directories with what only Windows gives them.

#include <cstdio>
#include <gmock/gmock.h>
#include <io.h>
#include <string>
#include <vector>
#include <windows.h>

#include "Os/Files.h"
#include "Os/Uri.h"
#include "tests/Os/FilesFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Windows/ImportPatch.h"
#include "tests/support/Windows/Umlauts.h"

namespace {

constexpr const char* kLibrary = "OrvexCimCore.dll";
constexpr DWORD kNoDialogs = SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX;

// A file that nobody else may open meanwhile.
class KeptFile {
 public:
  explicit KeptFile(const std::string& path)
      : m_file(CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {
    EXPECT_NE(m_file, INVALID_HANDLE_VALUE);
  }
  KeptFile(const KeptFile&) = delete;
  KeptFile& operator=(const KeptFile&) = delete;
  ~KeptFile() { CloseHandle(m_file); }

 private:
  HANDLE m_file;
};

// How the core library looked a file up and opened it.
std::vector<DWORD> s_errorModes;
std::string s_openMode;

intptr_t __cdecl findFirst(const char* path, __finddata64_t* entry) {
  s_errorModes.push_back(GetThreadErrorMode());
  return _findfirst64(path, entry);
}

std::FILE* __cdecl openFile(const char* path, const char* mode) {
  s_errorModes.push_back(GetThreadErrorMode());
  s_openMode = mode;
  return std::fopen(path, mode);
}

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
  for (const char* pattern : {"ful?", "ful>", "ful<", "<", "full\""}) {
    expectNotOpened(path(pattern));
  }
  for (const char* sign : {"*", "<"}) {
    EXPECT_FALSE(os::isThisADir(m_directory.path().string() + sign));
  }
}

TEST_F(WindowsFiles, AreNotDevices) {
  for (const std::string& device : {std::string("NUL"), std::string("CON"),
                                    std::string("\\\\.\\NUL"), path("NUL"), path("nul")}) {
    expectNotOpened(device);
    EXPECT_FALSE(os::isThisADir(device)) << device;
  }
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
  EXPECT_EQ(os::getFileSize(hidden), 0);
  EXPECT_EQ(read(hidden, 16), "");
  EXPECT_TRUE(os::isThisADir(folder("plain")));
}

TEST_F(WindowsFiles, AreNotFoundBehindATrailingSeparator) {
  const std::string directory = folder("folder");

  expectNotOpened(directory + "\\");
  EXPECT_FALSE(os::isThisADir(directory + "\\"));
}

TEST_F(WindowsFiles, ThatSomebodyKeepsHaveASizeAndNoContent) {
  const std::string made = file("full", "12345");
  const KeptFile kept(made);
  const test::LogCapture log;

  EXPECT_EQ(os::getFileSize(made), 5);
  EXPECT_EQ(read(made, 16), "");
  EXPECT_THAT(log.messages("os::readFile"),
              testing::ElementsAre("Reading 16 bytes from file " + made, "Read 0 bytes"));
}

TEST_F(WindowsFiles, AreNamedInTheCodePage) {
  test::demandWesternCodePage();
  m_directory.write(test::kUmlautPath, std::string("12345"));
  const std::string named = path("") + test::kUmlautText;

  EXPECT_EQ(os::getFileSize(named), 5);
  EXPECT_EQ(read(named, 16), "12345");
  EXPECT_TRUE(utils::Uri("file://" + named).exists());
}

TEST_F(WindowsFiles, OnADriveWithoutAMediumAskNobodyForOne) {
  const std::string made = file("full", "12345");
  const DWORD before = GetThreadErrorMode();
  ASSERT_NE(before & kNoDialogs, kNoDialogs);
  s_errorModes.clear();
  {
    const test::ImportPatch find(kLibrary, "_findfirst64", &findFirst);
    const test::ImportPatch open(kLibrary, "fopen", &openFile);
    EXPECT_EQ(os::getFileSize(made), 5);
    EXPECT_EQ(read(made, 16), "12345");
    EXPECT_FALSE(os::isThisADir(made));
  }

  EXPECT_THAT(s_errorModes, testing::ElementsAre(kNoDialogs, kNoDialogs, kNoDialogs, kNoDialogs));
  EXPECT_EQ(GetThreadErrorMode(), before);
}

TEST_F(WindowsFiles, AreNotInheritedByOtherProcessesWhileTheyAreRead) {
  const std::string made = file("full", "12345");
  const test::ImportPatch open(kLibrary, "fopen", &openFile);
  EXPECT_EQ(read(made, 16), "12345");

  EXPECT_EQ(s_openMode, "rbN");
}

}  // namespace
