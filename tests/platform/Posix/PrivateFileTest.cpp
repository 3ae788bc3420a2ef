#include <array>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <future>
#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/Posix/Descriptor.h"
#include "platform/Posix/PrivateFile.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/WaitUntil.h"

namespace {

namespace fs = std::filesystem;

using platform::Descriptor;
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

// With mode 600 alone, the service could not read it any more.
TEST_F(PrivateFile, OfRootIsGivenToTheUserOfTheProgram) {
  EXPECT_EQ(faultOfOwner(0, 0640, Privacy::Secret),
            "'/f' can be read or changed by others than its owner; run: chown 1000 /f && chmod 600 "
            "/f");
  EXPECT_THAT(faultOfOwner(kSelf, 0640, Privacy::Secret), EndsWith("; run: chmod 600 /f"));
  EXPECT_THAT(faultOfOwner(0, 0664, Privacy::Unchanged), EndsWith("; run: chmod go-w /f"));
}

TEST_F(PrivateFile, TellsTheSystemsReason) {
  const auto errorOf = [](const std::string& path) {
    try {
      static_cast<void>(platform::readPrivateFile(path, Privacy::Secret, kMost));
      return -1;
    } catch (const PrivateFileFault& fault) {
      return fault.error();
    }
  };
  EXPECT_EQ(errorOf("/missing"), ENOENT);
  EXPECT_EQ(errorOf(m_directory.path().string()), EISDIR);
  EXPECT_EQ(errorOf("/dev/null"), EOPNOTSUPP);
  EXPECT_EQ(errorOf(write("x", 0644)), 0);
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

// A pipe with text in it, as a shell gives it to a program.
class GivenPipe {
 public:
  explicit GivenPipe(const std::string& text) {
    std::array<int, 2> ends{-1, -1};
    EXPECT_EQ(pipe(ends.data()), 0);
    m_out = Descriptor(ends[0]);
    m_in = Descriptor(ends[1]);
    EXPECT_EQ(::write(m_in.get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  [[nodiscard]] int out() const { return m_out.get(); }
  [[nodiscard]] int in() const { return m_in.get(); }

 private:
  Descriptor m_out;
  Descriptor m_in;
};

std::string lineOf(const GivenPipe& pipe) {
  return platform::readPrivateLine("/dev/fd/" + std::to_string(pipe.out()), kMost);
}

TEST_F(PrivateFile, GivesALineThroughAPipeOfAShell) {
  for (const char* const folder : {"/proc/self/fd/", "/dev/fd/"}) {
    const GivenPipe given("one\ntwo\n");
    EXPECT_EQ(platform::readPrivateLine(folder + std::to_string(given.out()), kMost), "one");
  }
}

TEST_F(PrivateFile, GivesALineOfStandardInput) {
  const GivenPipe given("one\ntwo\n");
  const Descriptor before(dup(STDIN_FILENO));
  ASSERT_GE(dup2(given.out(), STDIN_FILENO), 0);
  EXPECT_EQ(platform::readPrivateLine("/dev/stdin", kMost), "one");
  if (before.isOpen()) {
    dup2(before.get(), STDIN_FILENO);
  }
}

TEST_F(PrivateFile, WaitsForAPipeThatIsNotToBeWaitedFor) {
  const GivenPipe given("on");
  ASSERT_EQ(fcntl(given.out(), F_SETFL, O_NONBLOCK), 0);
  auto line = std::async(std::launch::async, [&given] {
    return platform::readPrivateLine("/dev/fd/" + std::to_string(given.out()), kMost);
  });
  // The reader has taken the beginning, and finds nothing more.
  EXPECT_TRUE(test::waitUntil([&given] {
    int bytes = -1;
    return ioctl(given.out(), FIONREAD, &bytes) == 0 && bytes == 0;
  }));
  EXPECT_EQ(::write(given.in(), "e\n", 2), 2);
  EXPECT_EQ(line.get(), "one");
}

// Has the process act as another user, as long as the object.
class AsUser {
 public:
  explicit AsUser(uid_t user) { EXPECT_EQ(seteuid(user), 0); }
  AsUser(const AsUser&) = delete;
  AsUser& operator=(const AsUser&) = delete;
  ~AsUser() { EXPECT_EQ(seteuid(0), 0); }
};

// Whose they are, is decided by who started the program on their other end.
TEST_F(PrivateFile, MayBeReadThroughAPipeOfAnotherUserThatIsGiven) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can become another user";
  }
  const GivenPipe ofRoot("one\n");
  std::optional<GivenPipe> ofSomebody;
  {
    const AsUser somebody(kSomebody);
    ofSomebody.emplace("two\n");
    EXPECT_EQ(lineOf(ofRoot), "one");
  }
  EXPECT_EQ(lineOf(*ofSomebody), "two");
}

TEST_F(PrivateFile, OfAGivenDescriptorIsJudgedAsByItsName) {
  const Descriptor file(open(write("x", 0644).c_str(), O_RDONLY | O_CLOEXEC));
  EXPECT_THAT(lineFault("/dev/fd/" + std::to_string(file.get())), HasSubstr("chmod 600"));
}

TEST_F(PrivateFile, MayBeNoPipeOfOthersThatHasAName) {
  const std::string pipe = (m_directory.path() / "pipe").string();
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  ASSERT_EQ(chmod(pipe.c_str(), 0622), 0);
  const Descriptor writer(open(pipe.c_str(), O_RDWR | O_CLOEXEC));
  EXPECT_THAT(lineFault(pipe), HasSubstr("can be read or changed by others"));
}

TEST_F(PrivateFile, IsNoneWhereNoSuchDescriptorWasGiven) {
  for (const char* const path : {"/dev/fd/65535", "/dev/fd/", "/dev/fd/-1", "/dev/fd/0x"}) {
    EXPECT_THAT(lineFault(path), HasSubstr("cannot be read")) << path;
  }
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
