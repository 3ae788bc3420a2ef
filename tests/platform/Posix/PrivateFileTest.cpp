#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/Posix/PrivateFile.h"
#include "tests/support/TempDirectory.h"

namespace {

namespace fs = std::filesystem;

using platform::FileStamp;
using platform::Privacy;
using platform::PrivateFileFault;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;

constexpr std::size_t kMost = 100;
constexpr std::uint32_t kSelf = 1000;
constexpr std::uint32_t kSomebody = 1001;

class PrivateFile : public testing::Test {
 protected:
  [[nodiscard]] std::string write(const std::string& content, mode_t mode = 0600) const {
    const std::string path = m_directory.write("file", content).string();
    EXPECT_EQ(chmod(path.c_str(), mode), 0);
    return path;
  }

  template <class Use>
  static std::string faultOf(Use use) {
    try {
      use();
      return "none";
    } catch (const PrivateFileFault& fault) {
      return fault.what();
    }
  }
  static std::string readingFault(const std::string& path, Privacy privacy = Privacy::Secret) {
    return faultOf([&] { static_cast<void>(platform::readPrivateFile(path, privacy, kMost)); });
  }
  static std::string lineFault(const std::string& path) {
    return faultOf([&] { static_cast<void>(platform::readPrivateLine(path, kMost)); });
  }
  // Of a file of that owner and mode, as the user kSelf sees it.
  static std::string faultOfOwner(std::uint32_t owner, std::uint32_t mode, Privacy privacy) {
    FileStamp stamp;
    stamp.owner = owner;
    stamp.mode = S_IFREG | mode;
    return faultOf([&] { platform::demandPrivate("/f", stamp, privacy, kSelf); });
  }

  test::TempDirectory m_directory;
};

TEST_F(PrivateFile, IsReadWhole) {
  const std::string path = write("one\ntwo");
  EXPECT_EQ(platform::readPrivateFile(path, Privacy::Secret, kMost).content, "one\ntwo");
  EXPECT_EQ(platform::readPrivateLine(path, kMost), "one");
}

TEST_F(PrivateFile, IsNobodyElsesToReadOrWrite) {
  for (const mode_t mode : {0640U, 0620U, 0604U, 0602U, 0644U, 0610U}) {
    const std::string path = write("x", mode);
    const std::string text =
        "'" + path + "' can be read or changed by others than its owner; run: chmod 600 " + path;
    EXPECT_EQ(readingFault(path), text) << mode;
    EXPECT_EQ(lineFault(path), text) << mode;
  }
}

TEST_F(PrivateFile, MayBeReadByAllWhereItIsNoSecret) {
  EXPECT_EQ(readingFault(write("x", 0644), Privacy::Unchanged), "none");
  for (const mode_t mode : {0664U, 0646U}) {
    const std::string path = write("x", mode);
    EXPECT_EQ(readingFault(path, Privacy::Unchanged),
              "'" + path + "' can be changed by others than its owner; run: chmod go-w " + path);
  }
}

TEST_F(PrivateFile, BelongsToRootOrToTheUserOfTheProgram) {
  EXPECT_EQ(faultOfOwner(kSelf, 0600, Privacy::Secret), "none");
  EXPECT_EQ(faultOfOwner(0, 0600, Privacy::Secret), "none");
  for (const Privacy privacy : {Privacy::Secret, Privacy::Unchanged}) {
    EXPECT_THAT(faultOfOwner(kSomebody, 0600, privacy),
                AllOf(HasSubstr("'/f' belongs to the user "), HasSubstr("1001"),
                      EndsWith("run: chown 1000 /f")));
  }
}

TEST_F(PrivateFile, IsJudgedWhereALinkLeads) {
  const std::string path = write("x", 0644);
  const fs::path link = m_directory.path() / "link";
  fs::create_symlink(path, link);
  EXPECT_THAT(readingFault(link), HasSubstr("chmod 600"));
}

TEST_F(PrivateFile, IsARegularFileThatIsThere) {
  const std::string pipe = (m_directory.path() / "pipe").string();
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& path : {pipe, m_directory.path().string(), std::string("/missing")}) {
    EXPECT_EQ(readingFault(path),
              "'" + path + "' cannot be read; check the path and its permissions");
  }
  EXPECT_THAT(lineFault(m_directory.path().string()), HasSubstr("cannot be read"));
}

TEST_F(PrivateFile, IsNotReadBeyondItsBound) {
  EXPECT_EQ(readingFault(write(std::string(kMost, 'x'))), "none");
  EXPECT_THAT(readingFault(write(std::string(kMost + 1, 'x'))), HasSubstr("longer than 100 bytes"));
  EXPECT_THAT(lineFault(write(std::string(kMost + 1, 'x'))), HasSubstr("longer than 100 bytes"));
}

TEST_F(PrivateFile, GivesALineThroughAPipeOfAShell) {
  int ends[2] = {-1, -1};
  ASSERT_EQ(pipe(ends), 0);
  ASSERT_EQ(::write(ends[1], "one\ntwo\n", 8), 8);
  EXPECT_EQ(platform::readPrivateLine("/proc/self/fd/" + std::to_string(ends[0]), kMost), "one");
  close(ends[0]);
  close(ends[1]);
}

TEST_F(PrivateFile, HasAnotherStampAfterEachChange) {
  const std::string path = write("one");
  const std::optional<FileStamp> first = platform::findStamp(path);
  ASSERT_TRUE(first);
  EXPECT_EQ(first, platform::findStamp(path));
  // Another file of the same size and time.
  const fs::file_time_type time = fs::last_write_time(path);
  const fs::path other = m_directory.write("other", std::string("two"));
  fs::permissions(other, fs::perms::owner_read | fs::perms::owner_write);
  fs::last_write_time(other, time);
  fs::rename(other, path);
  EXPECT_NE(platform::findStamp(path), first);
  fs::remove(path);
  EXPECT_FALSE(platform::findStamp(path));
}

}  // namespace
