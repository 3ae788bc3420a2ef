#include <cerrno>
#include <gmock/gmock.h>
#include <string>
#include <unistd.h>

#include "daemon/Posix/LocalDatagram.h"
#include "tests/daemon/Posix/DatagramSocket.h"
#include "tests/support/TempDirectory.h"

namespace {

using quorveld::sendLocalDatagram;

TEST(LocalDatagram, ReachesASocketWithAPath) {
  const test::TempDirectory directory;
  const std::string path = (directory.path() / "socket").string();
  const test::DatagramSocket socket(path);
  EXPECT_EQ(sendLocalDatagram(path, "one"), 0);
  EXPECT_EQ(sendLocalDatagram(path, std::string("t\0o", 3)), 0);
  EXPECT_EQ(socket.receive(), "one");
  EXPECT_EQ(socket.receive(), std::string("t\0o", 3));
}

TEST(LocalDatagram, ReachesAnAbstractSocket) {
  const std::string name = "@quorveld-datagram-" + std::to_string(getpid());
  const test::DatagramSocket socket(name);
  EXPECT_EQ(sendLocalDatagram(name, "text"), 0);
  EXPECT_EQ(socket.receive(), "text");
}

TEST(LocalDatagram, SaysWhyItReachesNobody) {
  const test::TempDirectory directory;
  EXPECT_EQ(sendLocalDatagram((directory.path() / "missing").string(), "text"), ENOENT);
  EXPECT_EQ(sendLocalDatagram("/" + std::string(200, 'x'), "text"), ENAMETOOLONG);
  EXPECT_EQ(sendLocalDatagram("@quorveld-nobody-" + std::to_string(getpid()), "text"),
            ECONNREFUSED);
}

}  // namespace
