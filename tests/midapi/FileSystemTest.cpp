#include <gmock/gmock.h>

#include "midapi/FileSystem.h"
#include "tests/support/TempDirectory.h"

namespace {

using ma::FileBytes;
using ma::FileFault;
using ma::FileSystem;
using ma::nativeFileSystem;
using test::TempDirectory;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr std::size_t kNoLimit = ~std::size_t{0};

std::string textOf(const FileBytes& bytes) {
  return std::string(bytes.view().begin(), bytes.view().end());
}

template <class Operation>
std::string faultOf(Operation operation) {
  try {
    operation();
  } catch (const FileFault& fault) {
    return fault.what();
  }
  return "no fault";
}

class FileSystemTest : public testing::Test {
 protected:
  FileSystem& files() { return nativeFileSystem(); }
  std::string readFault(const std::filesystem::path& path, std::size_t limit = kNoLimit) {
    return faultOf([&] { static_cast<void>(files().read(path, limit)); });
  }

  TempDirectory m_directory;
};

TEST_F(FileSystemTest, ReadsWholeFiles) {
  const auto path = m_directory.write("file", std::string(200000, 'x') + "end");
  EXPECT_EQ(textOf(files().read(path, kNoLimit)), std::string(200000, 'x') + "end");
  EXPECT_THAT(textOf(files().read(m_directory.write("empty", std::string()), 0)), IsEmpty());
}

TEST_F(FileSystemTest, NamesTheFileAndTheReasonThatItCannotRead) {
  const auto missing = m_directory.path() / "missing";
  EXPECT_EQ(readFault(missing), "cannot read " + missing.string() + ": No such file or directory");
  EXPECT_THAT(readFault(m_directory.path()), HasSubstr("Is a directory"));
  EXPECT_THAT(readFault(m_directory.write("large", std::string(11, 'x')), 10),
              HasSubstr("File too large"));
}

TEST_F(FileSystemTest, TellsMissingFilesFromOtherFaults) {
  const auto isMissing = [&](const std::filesystem::path& path) {
    try {
      static_cast<void>(files().read(path, kNoLimit));
    } catch (const FileFault& fault) {
      return fault.isMissingFile();
    }
    return false;
  };
  EXPECT_TRUE(isMissing(m_directory.path() / "missing"));
  EXPECT_FALSE(isMissing(m_directory.path()));
}

TEST_F(FileSystemTest, WritesAFileThatItCreates) {
  const auto path = m_directory.path() / "file";
  const auto file = files().create(path);
  const std::string content = "new";
  file->append({reinterpret_cast<const std::uint8_t*>(content.data()), content.size()});
  file->sync();
  file->close();
  EXPECT_EQ(test::readText(path), "new");
}

TEST_F(FileSystemTest, CreatesNoFileInThePlaceOfAnything) {
  const auto file = m_directory.write("file", std::string("old"));
  EXPECT_THAT(faultOf([&] { static_cast<void>(files().create(file)); }),
              AllOf(HasSubstr("cannot create"), HasSubstr("File exists")));
  EXPECT_EQ(test::readText(file), "old");
  m_directory.write("folder/file", std::string());
  EXPECT_THAT(faultOf([&] { static_cast<void>(files().create(m_directory.path() / "folder")); }),
              HasSubstr("cannot create"));
}

TEST_F(FileSystemTest, NamesWhatIsInAFolderUpToABound) {
  m_directory.write("one/file", std::string());
  m_directory.write("file", std::string());
  EXPECT_THAT(files().entries(m_directory.path(), 10), UnorderedElementsAre("one", "file"));
  EXPECT_THAT(files().entries(m_directory.path(), 1), testing::SizeIs(1));
  EXPECT_THAT(faultOf([&] { static_cast<void>(files().entries(m_directory.path() / "none", 1)); }),
              HasSubstr("cannot read"));
}

TEST_F(FileSystemTest, RemovesAFileThatNeedNotBeThere) {
  const auto file = m_directory.write("file", std::string());
  files().remove(file);
  EXPECT_FALSE(files().exists(file));
  EXPECT_EQ(faultOf([&] { files().remove(file); }), "no fault");
}

TEST_F(FileSystemTest, RemovesNoFolderAsAFile) {
  m_directory.write("folder/file", std::string());
  EXPECT_THAT(faultOf([&] { files().remove(m_directory.path() / "folder"); }),
              HasSubstr("cannot remove"));
  EXPECT_TRUE(files().exists(m_directory.path() / "folder" / "file"));
}

TEST_F(FileSystemTest, GivesALockToOneAtATime) {
  const auto path = m_directory.path() / "lock";
  auto first = files().lock(path);
  ASSERT_NE(first, nullptr);
  EXPECT_TRUE(files().exists(path));
  EXPECT_EQ(files().lock(path), nullptr);
  first.reset();
  EXPECT_FALSE(files().exists(path));
  EXPECT_NE(files().lock(path), nullptr);
}

TEST_F(FileSystemTest, TakesALockWhoseFileStayedBehind) {
  const auto path = m_directory.write("lock", std::string());
  EXPECT_NE(files().lock(path), nullptr);
  EXPECT_FALSE(files().exists(path));
}

TEST_F(FileSystemTest, TakesNoFolderForALock) {
  m_directory.write("lock/file", std::string());
  EXPECT_THAT(faultOf([&] { static_cast<void>(files().lock(m_directory.path() / "lock")); }),
              HasSubstr("cannot lock"));
  EXPECT_THAT(
      faultOf([&] { static_cast<void>(files().lock(m_directory.path() / "none" / "lock")); }),
      HasSubstr("cannot lock"));
}

TEST_F(FileSystemTest, ListsFoldersButNoFiles) {
  m_directory.write("one/file", std::string());
  m_directory.write("two/file", std::string());
  m_directory.write("file", std::string());
  EXPECT_THAT(files().folders(m_directory.path()).names, UnorderedElementsAre("one", "two"));
  EXPECT_THAT(faultOf([&] { static_cast<void>(files().folders(m_directory.path() / "none")); }),
              HasSubstr("cannot read"));
}

TEST_F(FileSystemTest, DoesNotPutAFolderInThePlaceOfAFilledOne) {
  m_directory.write("filled/file", std::string());
  m_directory.write("new/file", std::string());
  EXPECT_THAT(
      faultOf([&] { files().replace(m_directory.path() / "new", m_directory.path() / "filled"); }),
      HasSubstr("cannot replace"));
}

TEST_F(FileSystemTest, CreatesFoldersOnceOrWithTheirParents) {
  const auto nested = m_directory.path() / "a" / "b";
  EXPECT_THAT(faultOf([&] { files().createFolder(nested); }), HasSubstr("cannot create"));
  files().createFolders(nested);
  files().createFolders(nested);
  EXPECT_TRUE(files().exists(nested));
  EXPECT_THAT(faultOf([&] { files().createFolder(nested); }), HasSubstr("File exists"));
}

TEST_F(FileSystemTest, RemovesFoldersWithTheirContentAndMindsNothing) {
  m_directory.write("a/b/file", std::string());
  files().removeQuietly(m_directory.path() / "a");
  files().removeQuietly(m_directory.path() / "a");
  EXPECT_FALSE(files().exists(m_directory.path() / "a"));
}

}  // namespace
