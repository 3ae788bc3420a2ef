// Files and directories with what only Windows gives them.

#include <chrono>
#include <filesystem>
#include <gmock/gmock.h>
#include <io.h>
#include <memory>
#include <string>
#include <vector>
#include <windows.h>

#include "Os/Files.h"
#include "Os/Uri.h"
#include "Os/Windows/WindowsFiles.h"
#include "tests/Os/FilesFixture.h"
#include "tests/support/FakeClock.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Windows/ImportPatch.h"
#include "tests/support/Windows/Umlauts.h"

namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::Pair;

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
bool s_isInherited = true;

intptr_t __cdecl findFirst(const wchar_t* path, _wfinddata64_t* entry) {
  s_errorModes.push_back(GetThreadErrorMode());
  return _wfindfirst64(path, entry);
}

HANDLE WINAPI openFile(const wchar_t* path, DWORD access, DWORD share,
                       SECURITY_ATTRIBUTES* attributes, DWORD creation, DWORD flags,
                       HANDLE pattern) {
  s_errorModes.push_back(GetThreadErrorMode());
  s_isInherited = attributes != nullptr && attributes->bInheritHandle != FALSE;
  return CreateFileW(path, access, share, attributes, creation, flags, pattern);
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
  test::FakeClock clock;
  std::uint8_t buffer[16];
  const test::LogCapture log;

  EXPECT_EQ(os::getFileSize(made), 5);
  EXPECT_EQ(os::readFileBy(clock, made, buffer, sizeof buffer), 0);
  EXPECT_TRUE(os::isInUse(made));
  EXPECT_THAT(log.messages("os::readFile"),
              testing::ElementsAre("Reading 16 bytes from file " + made, "Read 0 bytes"));
  EXPECT_THAT(clock.sleeps(), ElementsAre(Pair(milliseconds(1), 2000)));
}

TEST_F(WindowsFiles, ThatSomebodyKeepsForAWhileAreWaitedFor) {
  const std::string made = file("full", "12345");
  auto kept = std::make_unique<KeptFile>(made);
  test::FakeClock clock;
  clock.afterEachSleep([&kept](int count) {
    if (count == 5) {
      kept.reset();
    }
  });
  std::uint8_t buffer[16];

  EXPECT_EQ(os::readFileBy(clock, made, buffer, sizeof buffer), 5);
  EXPECT_FALSE(os::isInUse(made));
  EXPECT_THAT(clock.sleeps(), ElementsAre(Pair(milliseconds(1), 5)));
}

TEST_F(WindowsFiles, ThatAreMissingAreNotWaitedFor) {
  test::FakeClock clock;
  std::uint8_t buffer[16];

  EXPECT_EQ(os::readFileBy(clock, path("none"), buffer, sizeof buffer), 0);
  EXPECT_FALSE(os::isInUse(path("none")));
  EXPECT_THAT(clock.sleeps(), testing::IsEmpty());
}

TEST_F(WindowsFiles, MayHavePathsOfAnyLength) {
  const std::filesystem::path folder = m_directory.path() / std::string(150, 'a');
  const std::string named = (folder / (std::string(150, 'b') + ".rom")).string();
  ASSERT_GT(named.size(), std::size_t{MAX_PATH});
  std::filesystem::create_directory(folder);
  HANDLE made = CreateFileW((L"\\\\?\\" + std::filesystem::path(named).wstring()).c_str(),
                            GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
  DWORD written = 0;
  ASSERT_NE(WriteFile(made, "12345", 5, &written, nullptr), FALSE);
  CloseHandle(made);

  EXPECT_EQ(os::getFileSize(named), 5);
  EXPECT_EQ(read(named, 16), "12345");
  EXPECT_TRUE(utils::Uri("file://" + named).exists());
  DeleteFileW((L"\\\\?\\" + std::filesystem::path(named).wstring()).c_str());
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
    const test::ImportPatch find(kLibrary, "_wfindfirst64", &findFirst);
    const test::ImportPatch open(kLibrary, "CreateFileW", &openFile);
    EXPECT_EQ(os::getFileSize(made), 5);
    EXPECT_EQ(read(made, 16), "12345");
    EXPECT_FALSE(os::isThisADir(made));
  }

  EXPECT_THAT(s_errorModes, testing::ElementsAre(kNoDialogs, kNoDialogs, kNoDialogs, kNoDialogs));
  EXPECT_EQ(GetThreadErrorMode(), before);
}

TEST_F(WindowsFiles, AreNotInheritedByOtherProcessesWhileTheyAreRead) {
  const std::string made = file("full", "12345");
  const test::ImportPatch open(kLibrary, "CreateFileW", &openFile);
  EXPECT_EQ(read(made, 16), "12345");

  EXPECT_FALSE(s_isInherited);
}

}  // namespace
