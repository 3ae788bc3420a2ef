#include <filesystem>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>
#include <windows.h>

#include "midapi/Virtual/AdapterFolder.h"
#include "midapi/Windows/AccessList.h"
#include "midapi/Windows/WindowsFileSystem.h"
#include "tests/midapi/Windows/ServiceData.h"
#include "tests/support/FakeClock.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Windows/DirectoryLink.h"
#include "tests/support/Windows/ImportPatch.h"
#include "tests/support/Windows/Umlauts.h"

namespace {

using ma::AdapterFolders;
using ma::adaptersDirectory;
using ma::FileFault;
using ma::FileSystem;
using ma::listAdapterFolders;
using ma::makeWindowsFileSystem;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Pair;

template <class Operation>
std::string faultOf(Operation operation) {
  try {
    operation();
  } catch (const FileFault& fault) {
    return fault.what();
  }
  return "no fault";
}

constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// A file that somebody has open, with others free to do what they like, or what he lets them.
class OpenFile {
 public:
  explicit OpenFile(const std::filesystem::path& path, DWORD share = kShared)
      : m_file(CreateFileW(path.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, 0, nullptr)) {
    EXPECT_NE(m_file, INVALID_HANDLE_VALUE);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() { CloseHandle(m_file); }

 private:
  HANDLE m_file;
};

DWORD s_errorMode = 0;

HANDLE WINAPI openFile(const wchar_t* path, DWORD access, DWORD share,
                       SECURITY_ATTRIBUTES* attributes, DWORD creation, DWORD flags,
                       HANDLE pattern) {
  s_errorMode = GetThreadErrorMode();
  using Open = decltype(CreateFileW);
  auto* const open = reinterpret_cast<Open*>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "CreateFileW")));
  return open(path, access, share, attributes, creation, flags, pattern);
}

// The folders that were made, and whether with an access list of their own.
std::vector<std::pair<std::filesystem::path, bool>> s_madeFolders;

BOOL WINAPI makeFolder(const wchar_t* path, SECURITY_ATTRIBUTES* attributes) {
  s_madeFolders.emplace_back(path, attributes != nullptr);
  using Make = decltype(CreateDirectoryW);
  auto* const make = reinterpret_cast<Make*>(reinterpret_cast<void*>(
      GetProcAddress(GetModuleHandleA("kernel32.dll"), "CreateDirectoryW")));
  return make(path, attributes);
}

BOOL WINAPI refuseFolder(const wchar_t* path, SECURITY_ATTRIBUTES* attributes) {
  s_madeFolders.emplace_back(path, attributes != nullptr);
  SetLastError(ERROR_BAD_NETPATH);
  return FALSE;
}

// The access list of a file, as bytes.
std::string listOf(const std::filesystem::path& path) {
  DWORD size = 0;
  GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
  std::string list(size, '\0');
  EXPECT_NE(GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, list.data(), size, &size),
            FALSE);
  return list;
}

void givePrivateList(const std::filesystem::path& path) {
  const ma::PrivateFolderAttributes attributes;
  const auto* const list = static_cast<const SECURITY_ATTRIBUTES*>(attributes.get());
  EXPECT_NE(SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, list->lpSecurityDescriptor),
            FALSE);
}

class WindowsFileSystemTest : public testing::Test {
 protected:
  FileSystem& files() { return *m_files; }
  std::string readFault(const std::filesystem::path& path) {
    return faultOf([&] { static_cast<void>(files().read(path, 1000)); });
  }
  std::string replaceFault() {
    return faultOf([&] { files().replace(m_new, m_old); });
  }

  test::FakeClock m_clock;
  const std::unique_ptr<FileSystem> m_files = makeWindowsFileSystem(m_clock);
  test::TempDirectory m_directory;
  const std::filesystem::path m_old = m_directory.write("file", std::string("old"));
  const std::filesystem::path m_new = m_directory.write("file.new", std::string("new"));
};

TEST_F(WindowsFileSystemTest, RefusesADevice) {
  EXPECT_THAT(readFault("NUL"), EndsWith(": Invalid argument"));
}

TEST_F(WindowsFileSystemTest, SaysThatADirectoryIsOne) {
  EXPECT_EQ(readFault(m_directory.path()),
            "cannot read " + m_directory.path().string() + ": Is a directory");
}

TEST_F(WindowsFileSystemTest, ReadsFilesUpToTheLimit) {
  EXPECT_EQ(readFault(m_directory.write("limit", std::string(1000, 'x'))), "no fault");
  EXPECT_THAT(readFault(m_directory.write("above", std::string(1001, 'x'))),
              EndsWith(": File too large"));
}

TEST_F(WindowsFileSystemTest, TakesBothSeparators) {
  m_directory.write("a/file", std::string("content"));
  const std::string base = m_directory.path().string();
  for (const std::string path : {"/a/file", "\\a\\file", "\\a/file"}) {
    EXPECT_TRUE(files().exists(base + path)) << path;
    EXPECT_EQ(readFault(base + path), "no fault");
  }
}

TEST_F(WindowsFileSystemTest, MissesFilesInMissingFolders) {
  const auto path = m_directory.path() / "none" / "file";
  EXPECT_FALSE(files().exists(path));
  EXPECT_EQ(readFault(path), "cannot read " + path.string() + ": No such file or directory");
}

TEST_F(WindowsFileSystemTest, WaitsToReplaceAFileUntilItsReaderIsDone) {
  auto reader = std::make_unique<OpenFile>(m_old);
  m_clock.afterEachSleep([&](int count) {
    EXPECT_EQ(test::readText(m_old), "old");
    if (count == 5) {
      reader.reset();
    }
  });
  EXPECT_EQ(replaceFault(), "no fault");
  EXPECT_EQ(test::readText(m_old), "new");
  EXPECT_FALSE(files().exists(m_new));
  EXPECT_THAT(m_clock.sleeps(), ElementsAre(Pair(milliseconds(1), 5)));
}

TEST_F(WindowsFileSystemTest, LeavesAFileThatAReaderKeepsOpen) {
  const OpenFile reader(m_old);
  EXPECT_EQ(replaceFault(),
            "cannot replace " + m_old.string() + ": it is in use by another program");
  EXPECT_EQ(test::readText(m_old), "old");
  EXPECT_EQ(test::readText(m_new), "new");
  EXPECT_THAT(m_clock.sleeps(), ElementsAre(Pair(milliseconds(1), 2000)));
}

TEST_F(WindowsFileSystemTest, WaitsToReadAFileUntilNobodyKeepsIt) {
  auto kept = std::make_unique<OpenFile>(m_old, 0);
  m_clock.afterEachSleep([&kept](int count) {
    if (count == 5) {
      kept.reset();
    }
  });
  EXPECT_EQ(readFault(m_old), "no fault");
  EXPECT_THAT(m_clock.sleeps(), ElementsAre(Pair(milliseconds(1), 5)));
}

TEST_F(WindowsFileSystemTest, SaysThatAFileIsInUseThatSomebodyKeeps) {
  const OpenFile kept(m_old, 0);
  EXPECT_EQ(readFault(m_old),
            "cannot read " + m_old.string() + ": it is in use by another program");
  EXPECT_EQ(faultOf([&] { files().remove(m_old); }),
            "cannot remove " + m_old.string() + ": it is in use by another program");
  EXPECT_THAT(m_clock.sleeps(), ElementsAre(Pair(milliseconds(1), 4000)));
}

TEST_F(WindowsFileSystemTest, ReplacesNoFileByOneThatMoreMayRead) {
  givePrivateList(m_old);
  const std::string list = listOf(m_old);
  ASSERT_NE(list, listOf(m_new));
  EXPECT_EQ(replaceFault(), "no fault");
  EXPECT_EQ(test::readText(m_old), "new");
  EXPECT_EQ(listOf(m_old), list);
}

TEST_F(WindowsFileSystemTest, LeavesWhatALinkLeadsTo) {
  const auto kept = m_directory.write("kept/file", std::string("kept"));
  const auto link = m_directory.path() / "flash.rom.new";
  const test::DirectoryLink made(link, kept.parent_path());
  files().removeQuietly(link);
  EXPECT_EQ(test::readText(kept), "kept");
}

TEST_F(WindowsFileSystemTest, FindsLinksAmongTheFolders) {
  EXPECT_FALSE(files().folders(m_directory.path()).hasLinks);
  m_directory.write("folder/file", std::string());
  const test::DirectoryLink made(m_directory.path() / "link", m_directory.path() / "folder");
  const ma::Folders found = files().folders(m_directory.path());
  EXPECT_TRUE(found.hasLinks);
  EXPECT_THAT(found.names, testing::UnorderedElementsAre("folder", "link"));
}

TEST_F(WindowsFileSystemTest, MakesFoldersForDataOfServicesThatUsersOnlyRead) {
  const test::OwnProgramData own(m_directory.path().native() + L"\\");
  s_madeFolders.clear();
  {
    const test::ImportPatch make("midapi_test.exe", "CreateDirectoryW", &makeFolder);
    files().createFolders(ma::defaultAdaptersDirectory());
    files().createFolders(m_directory.path() / "Orvex" / "adapters");
  }
  EXPECT_THAT(s_madeFolders, ElementsAre(Pair(m_directory.path() / "Orvex", true),
                                         Pair(m_directory.path() / "Orvex" / "adapters", true)));
  EXPECT_TRUE(files().exists(m_directory.path() / "Orvex" / "adapters"));
}

TEST_F(WindowsFileSystemTest, MakesNothingInAFolderForServicesThatIsSomebodyElses) {
  const test::OwnProgramData own(m_directory.path().native());
  const auto folder = m_directory.path() / "Orvex";
  files().createFolder(folder);
  const test::PlayedOwner owner(L"Orvex", test::kStranger);

  EXPECT_THAT(faultOf([&] { files().createFolders(folder / "adapters"); }),
              HasSubstr(folder.string() + " belongs to S-1-5-21-1-2-3-4567"));
  EXPECT_FALSE(files().exists(folder / "adapters"));
  const std::string fault = faultOf([&] { static_cast<void>(files().lock(folder / "lock")); });
  EXPECT_THAT(fault, testing::StartsWith("cannot lock " + (folder / "lock").string() + ": " +
                                         folder.string() + " belongs to"));
  EXPECT_FALSE(files().exists(folder / "lock"));
}

TEST_F(WindowsFileSystemTest, MakesNothingForServicesWhereALinkLeadsTo) {
  const test::OwnProgramData own(m_directory.path().native());
  const auto elsewhere = m_directory.write("elsewhere/file", std::string()).parent_path();
  const test::DirectoryLink made(m_directory.path() / "Orvex", elsewhere);

  EXPECT_THAT(faultOf([&] { files().createFolders(ma::defaultAdaptersDirectory()); }),
              HasSubstr("Orvex is a link to another place"));
  EXPECT_FALSE(files().exists(elsewhere / "adapters"));
}

TEST_F(WindowsFileSystemTest, SaysThatTheOwnerOfAFolderCannotBeTold) {
  const test::OwnProgramData own(m_directory.path().native());
  files().createFolder(m_directory.path() / "Orvex");
  const test::PlayedOwner owner(L"Orvex", L"");
  EXPECT_THAT(faultOf([&] { files().createFolders(m_directory.path() / "Orvex"); }),
              EndsWith(": Permission denied"));
}

TEST_F(WindowsFileSystemTest, MakesOtherFoldersAsTheFolderRoundThemSays) {
  s_madeFolders.clear();
  const test::ImportPatch make("midapi_test.exe", "CreateDirectoryW", &makeFolder);
  files().createFolders(m_directory.path() / "a" / "b");
  EXPECT_THAT(s_madeFolders, ElementsAre(Pair(m_directory.path() / "a", false),
                                         Pair(m_directory.path() / "a" / "b", false)));
}

TEST_F(WindowsFileSystemTest, WorksOnPathsOfAnyLength) {
  const auto folder = m_directory.path() / std::string(150, 'a') / std::string(150, 'b');
  files().createFolders(folder);
  const std::string content = "content";
  const ma::ConstBytes bytes(reinterpret_cast<const std::uint8_t*>(content.data()), content.size());
  {
    const auto file = files().create(folder / "new");
    file->append(bytes);
    file->close();
  }
  files().replace(folder / "new", folder / "file");
  EXPECT_NE(files().lock(folder / "lock"), nullptr);
  EXPECT_TRUE(files().exists(folder / "file"));
  EXPECT_EQ(files().read(folder / "file", 1000).view().size(), content.size());
  EXPECT_THAT(files().entries(folder, 10), ElementsAre("file"));
  EXPECT_THAT(files().folders(folder.parent_path()).names, ElementsAre(folder.filename()));
  files().remove(folder / "file");
  files().removeQuietly(folder.parent_path());
  EXPECT_FALSE(files().exists(folder.parent_path()));
}

TEST_F(WindowsFileSystemTest, MakesNoFolderOfTheCurrentDriveForThatOfAServer) {
  const std::string folder = "\\\\quorvel-no-server\\share\\adapters";
  s_madeFolders.clear();
  const test::ImportPatch make("midapi_test.exe", "CreateDirectoryW", &refuseFolder);
  EXPECT_THAT(faultOf([&] { files().createFolders(folder); }), HasSubstr("cannot create"));
  EXPECT_THAT(s_madeFolders, testing::Not(testing::IsEmpty()));
  for (const auto& [path, isPrivate] : s_madeFolders) {
    EXPECT_TRUE(folder.starts_with(path.string())) << path.string();
  }
  EXPECT_FALSE(files().exists(m_directory.path().root_path() / "quorvel-no-server"));
}

TEST_F(WindowsFileSystemTest, CreatesAFolderOnce) {
  const auto folder = m_directory.path() / "folder";
  files().createFolder(folder);
  EXPECT_TRUE(files().exists(folder));
  EXPECT_THAT(faultOf([&] { files().createFolder(folder); }), HasSubstr("File exists"));
}

TEST_F(WindowsFileSystemTest, NamesFilesInTheCodePage) {
  test::demandWesternCodePage();
  EXPECT_EQ(readFault(test::kUmlautPath),
            "cannot read " + std::string(test::kUmlautText) + ": No such file or directory");
}

TEST_F(WindowsFileSystemTest, WorksInADirectoryThatTheCodePageHasNoNameFor) {
  const auto folder = m_directory.path() / test::kMacronPath;
  files().createFolders(folder / "flash.rom");
  EXPECT_THAT(files().folders(m_directory.path()).names,
              ElementsAre(std::filesystem::path(test::kMacronPath)));
  SetEnvironmentVariableW(L"ORVEX_ADAPTERS", folder.c_str());
  EXPECT_EQ(adaptersDirectory(), folder);
  SetEnvironmentVariableW(L"ORVEX_ADAPTERS", nullptr);
}

// The sign is a wide 0, whose likeness is a plain one.
TEST_F(WindowsFileSystemTest, TakesNoLikenessOfAnAddressForAnAdapter) {
  const std::filesystem::path stranger = L"\uFF10000-03-00";
  files().createFolder(m_directory.path() / stranger);

  const AdapterFolders found = listAdapterFolders(files(), m_directory.path());
  EXPECT_THAT(found.addresses, testing::IsEmpty());
  EXPECT_THAT(found.strangers, ElementsAre(stranger));
}

TEST_F(WindowsFileSystemTest, GivesNoIdentities) {
  EXPECT_EQ(files().identity(m_directory.path()), std::nullopt);
}

TEST_F(WindowsFileSystemTest, AsksNobodyAboutADriveWithoutAMedium) {
  s_errorMode = 0;
  const DWORD before = GetThreadErrorMode();
  const test::ImportPatch open("midapi_test.exe", "CreateFileW", &openFile);
  EXPECT_EQ(readFault(m_old), "no fault");

  EXPECT_EQ(s_errorMode, DWORD{SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX});
  EXPECT_EQ(GetThreadErrorMode(), before);
}

TEST_F(WindowsFileSystemTest, ReadsWhatIsStillBeingWritten) {
  const auto path = m_directory.path() / "unfinished";
  const auto file = files().create(path);
  EXPECT_EQ(readFault(path), "no fault");
}

}  // namespace
