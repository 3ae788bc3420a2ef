#include <cstring>
#include <filesystem>
#include <gmock/gmock.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

#include "Os/Files.h"
#include "Os/Posix/Descriptor.h"
#include "Utils/Exception.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"

namespace {

using test::ChildProcess;
using test::IsRecordOf;
using test::LogCapture;
using test::LogLevel;
using test::ThrowsExactly;
using testing::ElementsAre;

constexpr const char* kSource = "Os/Posix/PosixFiles";
constexpr std::uintmax_t kTwoGiB = std::uintmax_t{1} << 31;

class Files : public testing::Test {
 protected:
  // Make something at a path of the test's directory and return the path.
  std::string file(const std::string& name, const std::string& content) {
    return m_directory.write(name, content).string();
  }
  std::string path(const std::string& name) const { return (m_directory.path() / name).string(); }
  std::string folder(const std::string& name) {
    std::filesystem::create_directory(path(name));
    return path(name);
  }
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
    const os::Descriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    if (bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
      throw std::runtime_error("bind");
    }
    return path(name);
  }
  std::string sparseFile(const std::string& name, std::uintmax_t size) {
    const std::string made = file(name, "");
    std::filesystem::resize_file(made, size);
    return made;
  }
  std::string link(const std::string& name, const std::string& target) {
    std::filesystem::create_symlink(target, path(name));
    return path(name);
  }

  static std::string read(const std::string& path, std::int32_t count) {
    std::vector<std::uint8_t> buffer(static_cast<std::size_t>(count) + 1, '#');
    const std::int32_t got = os::readFile(path, buffer.data(), count);
    EXPECT_EQ(buffer.at(static_cast<std::size_t>(got)), '#') << "wrote behind what it read";
    return {buffer.begin(), buffer.begin() + got};
  }

  static void expectNotOpened(const std::string& path) {
    EXPECT_THAT([&] { static_cast<void>(os::getFileSize(path)); },
                ThrowsExactly<utils::Exception>("Could not open the file '" + path + "'"));
    EXPECT_EQ(read(path, 16), "") << path;
  }

  test::TempDirectory m_directory;
};

TEST_F(Files, HaveTheirSize) {
  EXPECT_EQ(os::getFileSize(file("full", "12345")), 5);
  EXPECT_EQ(os::getFileSize(file("empty", "")), 0);
}

TEST_F(Files, LogTheirSize) {
  const std::string path = file("full", "12345");
  const LogCapture log;
  static_cast<void>(os::getFileSize(path));

  EXPECT_THAT(log.records(), ElementsAre(IsRecordOf(kSource, LogLevel::Debug, "os::getFileSize",
                                                    "Output size of Provider file: 5")));
}

TEST_F(Files, AreFoundThroughLinks) {
  const std::string linked = link("link", file("full", "12345"));

  EXPECT_EQ(os::getFileSize(linked), 5);
  EXPECT_EQ(read(linked, 16), "12345");
}

TEST_F(Files, MayBeJustBelowTwoGiB) {
  EXPECT_EQ(os::getFileSize(sparseFile("large", kTwoGiB - 1)), 2147483647);
}

TEST_F(Files, OfTwoGiBOrMoreAreNotOpened) {
  for (const std::uintmax_t size : {kTwoGiB, 2 * kTwoGiB + 5}) {
    const std::string path = sparseFile("huge", size);
    EXPECT_THAT([&] { static_cast<void>(os::getFileSize(path)); },
                ThrowsExactly<utils::Exception>("Could not open the file '" + path + "'"));
  }
}

TEST_F(Files, ThatAreMissingAreNotOpened) {
  expectNotOpened(path("absent"));
  expectNotOpened(path("absent/file"));
  expectNotOpened(file("full", "x") + "/below");
  expectNotOpened(link("dangling", path("absent")));
  expectNotOpened("");
  expectNotOpened(path("100%s%n"));
}

TEST_F(Files, ThatAreNotRegularAreNotOpened) {
  expectNotOpened(pipe("pipe"));
  expectNotOpened(socketFile("socket"));
  expectNotOpened("/dev/zero");
  expectNotOpened("/dev/null");
  expectNotOpened(link("link", "/dev/zero"));
}

TEST_F(Files, AreToldFromDirectories) {
  const std::string directory = folder("folder");

  for (const std::string& path : {directory, directory + "/", link("link", directory)}) {
    EXPECT_THAT(
        [&] { static_cast<void>(os::getFileSize(path)); },
        ThrowsExactly<utils::Exception>("The specyfied URI '" + path + "' points to a directory "));
    EXPECT_EQ(read(path, 16), "");
  }
}

TEST_F(Files, AreReadUpToACount) {
  const std::string path = file("full", std::string("ab\0de", 5));

  EXPECT_EQ(read(path, 0), "");
  EXPECT_EQ(read(path, 2), "ab");
  EXPECT_EQ(read(path, 5), std::string("ab\0de", 5));
  EXPECT_EQ(read(path, 100), std::string("ab\0de", 5));
}

TEST_F(Files, AreReadWhole) {
  std::string content(3'000'000, 'x');
  content.back() = 'y';

  EXPECT_EQ(read(file("long", content), 3'000'000), content);
}

TEST_F(Files, LogHowMuchIsRead) {
  const std::string path = file("100%s", "12345");
  const LogCapture log;
  static_cast<void>(read(path, 8));

  EXPECT_THAT(log.records(),
              ElementsAre(IsRecordOf(kSource, LogLevel::Debug, "os::readFile",
                                     "Reading 8 bytes from file " + path),
                          IsRecordOf(kSource, LogLevel::Debug, "os::readFile", "Read 5 bytes")));
}

TEST_F(Files, LogThatNothingIsReadFromAMissingOne) {
  const LogCapture log;
  static_cast<void>(read(path("absent"), 8));

  EXPECT_THAT(log.messages("os::readFile"),
              ElementsAre("Reading 8 bytes from file " + path("absent"), "Read 0 bytes"));
}

TEST_F(Files, ThatMayNotBeReadHaveASizeButNoContent) {
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

TEST_F(Files, DoNotHoldAReaderOfAPipeUp) {
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

TEST_F(Files, AndDirectoriesAreToldApart) {
  const std::string directory = folder("folder");

  EXPECT_TRUE(os::isThisADir(directory));
  EXPECT_TRUE(os::isThisADir(directory + "/"));
  EXPECT_TRUE(os::isThisADir(link("link", directory)));
  EXPECT_FALSE(os::isThisADir(file("full", "x")));
  EXPECT_FALSE(os::isThisADir(path("absent")));
  EXPECT_FALSE(os::isThisADir(pipe("pipe")));
  EXPECT_FALSE(os::isThisADir(""));
}

TEST_F(Files, LogTheTestForADirectory) {
  const std::string directory = folder("folder");
  constexpr const char* kFunction = "os::isThisADir";
  LogCapture log;
  static_cast<void>(os::isThisADir(directory));

  EXPECT_THAT(log.records(),
              ElementsAre(IsRecordOf(kSource, LogLevel::Debug, kFunction,
                                     "Checking if the declared path " + directory +
                                         " points to a directory"),
                          IsRecordOf(kSource, LogLevel::Debug, kFunction, "It is a directory")));
  log.clear();
  static_cast<void>(os::isThisADir(path("absent")));
  EXPECT_THAT(log.messages(kFunction), ElementsAre("Checking if the declared path " +
                                                   path("absent") + " points to a directory"));
}

}  // namespace
