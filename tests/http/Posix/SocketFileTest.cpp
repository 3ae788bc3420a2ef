#include <cerrno>
#include <filesystem>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>

#include "http/Posix/SocketFile.h"
#include "http/ServerOptions.h"
#include "platform/Posix/Descriptor.h"
#include "tests/support/TempDirectory.h"

namespace {

namespace fs = std::filesystem;

using http::SocketFile;
using platform::Descriptor;

Descriptor bindTo(const fs::path& path) {
  Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.native().copy(address.sun_path, sizeof(address.sun_path) - 1);
  EXPECT_EQ(bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
  return socket;
}

class SocketFileTest : public testing::Test {
 protected:
  int errorOfWay() {
    try {
      SocketFile::makeWay(m_path);
      return 0;
    } catch (const std::system_error& fault) {
      return fault.code().value();
    }
  }

  std::string faultOfWay() {
    try {
      SocketFile::makeWay(m_path);
      return "none";
    } catch (const http::SetupFault& fault) {
      return fault.what();
    }
  }

  test::TempDirectory m_directory;
  fs::path m_path = m_directory.path() / "run" / "a.sock";
};

TEST_F(SocketFileTest, HasItsFolderMade) {
  const mode_t before = umask(0077);
  EXPECT_EQ(errorOfWay(), 0);
  umask(before);
  EXPECT_EQ(fs::status(m_path.parent_path()).permissions(), fs::perms(0755));
  EXPECT_TRUE(fs::is_directory(m_path.parent_path()));
  EXPECT_EQ(errorOfWay(), 0);
}

TEST_F(SocketFileTest, IsOpenToEveryUserAndRemovedInTheEnd) {
  SocketFile::makeWay(m_path);
  const Descriptor socket = bindTo(m_path);
  {
    const SocketFile file(m_path);
    EXPECT_EQ(fs::status(m_path).permissions(), fs::perms(0666));
  }
  EXPECT_FALSE(fs::exists(m_path));
}

TEST_F(SocketFileTest, IsInNoFolderThatOthersCanChange) {
  ASSERT_EQ(errorOfWay(), 0);
  const std::string folder = m_path.parent_path();
  for (const mode_t mode : {0775U, 0757U, 0777U}) {
    ASSERT_EQ(chmod(folder.c_str(), mode), 0);
    const std::string text = faultOfWay();
    EXPECT_THAT(text, testing::StartsWith("Cannot listen on unix:" + m_path.string()));
    EXPECT_THAT(text, testing::EndsWith("run: chmod go-w " + folder));
  }
  // As /tmp is: what is there is its owner's.
  ASSERT_EQ(chmod(folder.c_str(), 01777), 0);
  EXPECT_EQ(faultOfWay(), "none");
}

TEST_F(SocketFileTest, IsInNoFolderOfAnotherUser) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can give a folder away";
  }
  ASSERT_EQ(errorOfWay(), 0);
  ASSERT_EQ(chown(m_path.parent_path().c_str(), 64242, 64242), 0);
  EXPECT_THAT(faultOfWay(), testing::HasSubstr("belongs to the user 64242"));
}

// Who owns a folder on the way, or a link, decides what is behind it.
TEST_F(SocketFileTest, IsBehindNoFolderThatOthersCanChange) {
  m_path = m_directory.path() / "middle" / "run" / "a.sock";
  const fs::path middle = m_directory.path() / "middle";
  fs::create_directory(middle);
  ASSERT_EQ(chmod(middle.c_str(), 0777), 0);
  EXPECT_THAT(faultOfWay(), testing::EndsWith("run: chmod go-w " + middle.string()));
  EXPECT_FALSE(fs::exists(m_path.parent_path()));
  ASSERT_EQ(chmod(middle.c_str(), 01777), 0);
  EXPECT_EQ(faultOfWay(), "none");
}

TEST_F(SocketFileTest, IsBehindNoFolderOfAnotherUser) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can give a folder away";
  }
  const fs::path strangers = m_directory.path() / "strangers";
  m_path = strangers / "run" / "a.sock";
  fs::create_directories(m_path.parent_path());
  ASSERT_EQ(chown(strangers.c_str(), 64242, 64242), 0);
  EXPECT_THAT(faultOfWay(), testing::HasSubstr("the folder '" + strangers.string() +
                                               "' belongs to the user 64242"));
  EXPECT_THROW(SocketFile{m_path}, http::SetupFault);
}

TEST_F(SocketFileTest, IsBehindNoLinkInAFolderOfAnotherUser) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can give a folder away";
  }
  const fs::path strangers = m_directory.path() / "strangers";
  fs::create_directory(strangers);
  fs::create_directory(m_directory.path() / "real");
  fs::create_directory_symlink(m_directory.path() / "real", strangers / "run");
  ASSERT_EQ(chown(strangers.c_str(), 64242, 64242), 0);
  m_path = strangers / "run" / "a.sock";
  EXPECT_THAT(faultOfWay(), testing::HasSubstr("belongs to the user 64242"));
}

TEST_F(SocketFileTest, IsBehindNoLinkOfAnotherUser) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can give a link away";
  }
  const fs::path link = m_directory.path() / "link";
  fs::create_directory(m_directory.path() / "real");
  fs::create_directory_symlink("real", link);
  ASSERT_EQ(lchown(link.c_str(), 64242, 64242), 0);
  m_path = link / "a.sock";
  EXPECT_THAT(faultOfWay(),
              testing::HasSubstr("the link '" + link.string() + "' belongs to the user 64242"));
}

TEST_F(SocketFileTest, MayBeBehindLinksOfItsOwn) {
  fs::create_directories(m_directory.path() / "real" / "deep");
  fs::create_directory_symlink("real/deep", m_directory.path() / "relative");
  fs::create_directory_symlink(m_directory.path() / "relative" / "..",
                               m_directory.path() / "absolute");
  m_path = m_directory.path() / "absolute" / "." / "run" / "a.sock";
  ASSERT_EQ(errorOfWay(), 0);
  EXPECT_TRUE(fs::is_directory(m_directory.path() / "real" / "run"));
  const Descriptor socket = bindTo(m_path);
  const SocketFile file(m_path);
  EXPECT_EQ(fs::status(m_path).permissions(), fs::perms(0666));
}

TEST_F(SocketFileTest, IsFoundThroughABoundedNumberOfLinks) {
  fs::create_directory_symlink("loop", m_directory.path() / "loop");
  m_path = m_directory.path() / "loop" / "a.sock";
  EXPECT_EQ(errorOfWay(), ELOOP);
  m_path = m_directory.path() / "loop" / "run" / "a.sock";
  EXPECT_EQ(errorOfWay(), ELOOP);
}

TEST_F(SocketFileTest, IsFoundThroughAsManyLinksAsTheSystemGoesThrough) {
  constexpr int kMost = 40;
  fs::create_directory(m_directory.path() / "0");
  for (int link = 1; link <= kMost + 1; ++link) {
    fs::create_directory_symlink(std::to_string(link - 1),
                                 m_directory.path() / std::to_string(link));
  }
  m_path = m_directory.path() / std::to_string(kMost) / "a.sock";
  EXPECT_EQ(errorOfWay(), 0);
  m_path = m_directory.path() / std::to_string(kMost + 1) / "a.sock";
  EXPECT_EQ(errorOfWay(), ELOOP);
}

TEST_F(SocketFileTest, IsInNoFolderThatIsAFile) {
  m_directory.write("run", std::string("content"));
  EXPECT_EQ(errorOfWay(), ENOTDIR);
}

// Somebody else could have put it there since the socket was bound.
TEST_F(SocketFileTest, OpensNothingElseToEveryUser) {
  SocketFile::makeWay(m_path);
  const fs::path secret = m_directory.writePrivate("run/secret", "secret");
  fs::create_symlink(secret, m_path);
  EXPECT_THROW(SocketFile{m_path}, std::system_error);
  fs::remove(m_path);
  fs::create_hard_link(secret, m_path);
  EXPECT_THROW(SocketFile{m_path}, std::system_error);
  EXPECT_EQ(fs::status(secret).permissions(), fs::perms(0600));
}

TEST_F(SocketFileTest, IsRemovedFromItsFolderWhereverThatIs) {
  SocketFile::makeWay(m_path);
  const Descriptor socket = bindTo(m_path);
  auto file = std::make_unique<SocketFile>(m_path);
  const fs::path moved = m_directory.path() / "moved";
  fs::rename(m_path.parent_path(), moved);
  file.reset();
  EXPECT_FALSE(fs::exists(moved / m_path.filename()));
}

TEST_F(SocketFileTest, TakesThePlaceOfOneThatNobodyServes) {
  SocketFile::makeWay(m_path);
  { const Descriptor left = bindTo(m_path); }
  ASSERT_TRUE(fs::exists(m_path));
  EXPECT_EQ(errorOfWay(), 0);
  EXPECT_FALSE(fs::exists(m_path));
}

TEST_F(SocketFileTest, LeavesOneThatIsServed) {
  SocketFile::makeWay(m_path);
  const Descriptor served = bindTo(m_path);
  ASSERT_EQ(listen(served.get(), 1), 0);
  EXPECT_EQ(errorOfWay(), EADDRINUSE);
  EXPECT_TRUE(fs::exists(m_path));
}

TEST_F(SocketFileTest, SaysHowLongThePathOfASocketMayBe) {
  SocketFile::makeWay(m_path);
  const Descriptor socket = bindTo(m_path);
  const fs::path longer = m_path.parent_path() / std::string(150, 'a');
  fs::rename(m_path, longer);
  EXPECT_THAT([&longer] { SocketFile::makeWay(longer); },
              testing::ThrowsMessage<std::system_error>(
                  testing::HasSubstr("the path of a socket has 107 characters at most")));
}

TEST_F(SocketFileTest, LeavesWhatIsNoSocket) {
  m_directory.write("run/a.sock", std::string("content"));
  EXPECT_EQ(errorOfWay(), EEXIST);
  EXPECT_EQ(test::readText(m_path), "content");
}

TEST_F(SocketFileTest, LeavesTheSocketOfAnotherServerInTheEnd) {
  SocketFile::makeWay(m_path);
  const Descriptor first = bindTo(m_path);
  auto file = std::make_unique<SocketFile>(m_path);
  // Kept, so that the other one cannot get the same number.
  fs::rename(m_path, m_directory.path() / "kept");
  const Descriptor second = bindTo(m_path);
  file.reset();
  EXPECT_TRUE(fs::exists(m_path));
}

TEST_F(SocketFileTest, CannotBeMadeEverywhere) {
  m_path = m_directory.path() / "no" / "folder" / "a.sock";
  EXPECT_EQ(errorOfWay(), ENOENT);
  SocketFile::makeWay((m_directory.path() / "a.sock").string());
  EXPECT_THROW(SocketFile(m_directory.path() / "a.sock"), std::system_error);
}

}  // namespace
