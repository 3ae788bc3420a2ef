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
