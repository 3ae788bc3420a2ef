// Files of the kinds that only POSIX has.

#include <chrono>
#include <cstring>
#include <filesystem>
#include <gmock/gmock.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "Os/Files.h"
#include "platform/Posix/Descriptor.h"
#include "tests/Os/FilesFixture.h"
#include "tests/Os/HungDirectory.h"
#include "tests/Os/Platform.h"
#include "tests/Os/Posix/HungMount.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Posix/ChildProcess.h"
#include "tests/support/WaitUntil.h"

namespace {

using test::ChildProcess;

class PosixFiles : public test::FilesFixture {
 protected:
  std::string pipe(const std::string& name) {
    if (mkfifo(path(name).c_str(), 0600) != 0) {
      throw std::runtime_error("mkfifo");
    }
    return path(name);
  }
  std::string socketFile(const std::string& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path(name).c_str(), sizeof address.sun_path - 1);
    const platform::Descriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    if (bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
      throw std::runtime_error("bind");
    }
    return path(name);
  }
  std::string link(const std::string& name, const std::string& target) {
    std::filesystem::create_symlink(target, path(name));
    return path(name);
  }
};

TEST_F(PosixFiles, AreFoundThroughLinks) {
  const std::string linked = link("link", file("full", "12345"));

  EXPECT_EQ(os::getFileSize(linked), 5);
  EXPECT_EQ(read(linked, 16), "12345");
}

TEST_F(PosixFiles, ThatAreNotRegularAreNotOpened) {
  expectNotOpened(pipe("pipe"));
  expectNotOpened(socketFile("socket"));
  expectNotOpened("/dev/zero");
  expectNotOpened("/dev/null");
  expectNotOpened(link("link", "/dev/zero"));
  expectNotOpened(link("dangling", path("absent")));
}

TEST_F(PosixFiles, AreToldFromDirectories) {
  const std::string directory = folder("folder");

  expectDirectory(directory + "/");
  expectDirectory(link("link", directory));
  EXPECT_FALSE(os::isThisADir(pipe("pipe")));
}

TEST_F(PosixFiles, ThatMayNotBeReadHaveASizeButNoContent) {
  constexpr uid_t kNobody = 65534;
  const std::string path = file("secret", "12345");
  std::filesystem::permissions(path, std::filesystem::perms::none);

  // The superuser may read everything, so the child becomes somebody else.
  ChildProcess child([&path](ChildProcess::Link&) {
    if (geteuid() == 0 && seteuid(kNobody) != 0) {
      return 1;
    }
    std::uint8_t byte = 0;
    return os::getFileSize(path) == 5 && os::readFile(path, &byte, 1) == 0 ? 0 : 2;
  });

  EXPECT_EQ(child.wait(), 0);
}

TEST_F(PosixFiles, DoNotHoldAReaderOfAPipeUp) {
  const std::string path = pipe("pipe");
  ChildProcess child([&path](ChildProcess::Link& parent) {
    std::uint8_t byte = 0;
    const bool isEmpty = os::readFile(path, &byte, 1) == 0;
    parent.tell('r');
    return isEmpty ? 0 : 1;
  });

  EXPECT_TRUE(child.link().await('r'));
  EXPECT_EQ(child.wait(), 0);
}

TEST_F(PosixFiles, CountAsMissingWhereTheFileSystemDoesNotAnswer) {
  const std::string away = file("away/file", "12345");
  const std::string here = file("here/file", "12345");
  {
    const test::HungDirectory hung(path("away"));

    expectNotOpened(away);
    EXPECT_FALSE(os::isThisADir(path("away")));
    EXPECT_EQ(os::getFileSize(here), 5);
    EXPECT_EQ(read(here, 16), "12345");
  }
  EXPECT_EQ(os::getFileSize(away), 5);
  EXPECT_EQ(read(away, 16), "12345");
}

TEST_F(PosixFiles, LogThatTheFileSystemDoesNotAnswer) {
  const std::string path = file("file", "12345");
  const auto isGivenUp = [&path] {
    try {
      return os::getFileSize(path) < 0;
    } catch (const utils::Exception&) {
      return true;
    }
  };
  const test::LogCapture log;
  const auto before = os::fileCalls().setPatience(std::chrono::milliseconds(0));
  const bool wasGivenUp = test::waitUntil(isGivenUp);
  os::fileCalls().setPatience(before);

  EXPECT_TRUE(wasGivenUp);
  EXPECT_THAT(
      log.records(test::LogSink::EventLog),
      test::HasRecordOf(test::kFilesSource, test::LogLevel::Error, "os::getFileSize",
                        "The file system of '" + path +
                            "' does not answer; what is there counts as missing until it does"));
  EXPECT_TRUE(test::waitUntil([&isGivenUp] { return !isGivenUp(); }));
}

TEST_F(PosixFiles, AreGivenUpOnAFileSystemThatHangs) {
  const std::string directory = folder("hung");
  test::HungMount mount(directory);
  if (!mount.isMounted()) {
    GTEST_SKIP() << "this user may mount no file system of a program";
  }
  const auto before = os::fileCalls().setPatience(std::chrono::milliseconds(50));
  EXPECT_FALSE(os::isThisADir(directory));
  expectNotOpened(directory + "/image.rom");
  os::fileCalls().setPatience(before);

  EXPECT_EQ(os::getFileSize(file("here", "12345")), 5);
  mount.end();
  EXPECT_TRUE(test::waitUntil([&directory] { return os::isThisADir(directory); }));
}

TEST_F(PosixFiles, OfSeveralPiecesAreReadWhole) {
  std::string content(std::size_t{9} << 20, 'x');
  content.front() = 'a';
  content[std::size_t{4} << 20] = 'b';
  content.back() = 'c';

  EXPECT_EQ(read(file("long", content), static_cast<std::int32_t>(content.size()) + 1), content);
}

}  // namespace
