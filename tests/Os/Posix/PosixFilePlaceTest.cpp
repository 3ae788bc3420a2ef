#include <chrono>
#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <utility>
#include <vector>

#include "Os/FileCalls.h"
#include "Os/FilePlace.h"
#include "tests/Os/FilesFixture.h"
#include "tests/Os/Posix/HungMount.h"
#include "tests/support/WaitUntil.h"

namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;

class PosixFilePlace : public test::FilesFixture {
 protected:
  // Returns the directories on the way, from that of the test on.
  std::vector<std::string> wayTo(const std::string& path) const {
    std::vector<std::string> way;
    os::walkPlaces(path, [&](const std::string& fileSystem, const std::string& directory) {
      EXPECT_NE(fileSystem, "");
      if (directory.size() > m_root.size() && directory.starts_with(m_root)) {
        way.push_back(directory.substr(m_root.size()));
      }
      return true;
    });
    return way;
  }
  static std::string fileSystemOf(const std::string& path) {
    std::string last;
    os::walkPlaces(path, [&last](const std::string& fileSystem, const std::string&) {
      last = fileSystem;
      return true;
    });
    return last;
  }

  const std::string m_root = fs::canonical(m_directory.path()).string();
};

TEST_F(PosixFilePlace, GoesThroughEachDirectory) {
  EXPECT_THAT(wayTo(m_root + "/a/b"), ElementsAre("/a", "/a/b"));
  EXPECT_THAT(wayTo(m_root + "/.//a/../b/"), ElementsAre("/a", "/b"));
}

TEST_F(PosixFilePlace, FollowsLinks) {
  folder("real");
  fs::create_directory_symlink("real", path("link"));
  fs::create_directory_symlink(m_root + "/real", path("absolute"));
  EXPECT_THAT(wayTo(m_root + "/link/x"), ElementsAre("/real", "/real/x"));
  EXPECT_THAT(wayTo(m_root + "/absolute/x"), ElementsAre("/real", "/real/x"));
}

TEST_F(PosixFilePlace, EndsWhereLinksGoInACircle) {
  fs::create_directory_symlink("circle", path("circle"));
  EXPECT_THAT(wayTo(m_root + "/circle/x"), testing::IsEmpty());
}

TEST_F(PosixFilePlace, EndsWhereItIsTold) {
  int steps = 0;
  os::walkPlaces(m_root, [&steps](const std::string&, const std::string&) {
    ++steps;
    return false;
  });
  EXPECT_EQ(steps, 1);
}

TEST_F(PosixFilePlace, IsTheSameByEachSpelling) {
  folder("hung");
  folder("hung/deep");
  fs::create_directory_symlink("hung", path("link"));
  const test::HungMount mount(path("hung"));
  if (!mount.isMounted()) {
    GTEST_SKIP() << "this user may mount no file system of a program";
  }
  const std::string fileSystem = fileSystemOf(m_root + "/hung");
  EXPECT_NE(fileSystem, fileSystemOf(m_root));
  EXPECT_EQ(fileSystemOf(m_root + "/link"), fileSystem);

  const auto before = os::fileCalls().setPatience(std::chrono::milliseconds(100));
  const auto ask = [](const std::string& asked) {
    return os::fileCalls().make(asked, [asked] { static_cast<void>(fs::exists(asked)); });
  };
  EXPECT_EQ(ask(m_root + "/hung/x"), os::FileAnswer::GivenUp);
  // It waits for none of these, nor is anything beside it held up.
  os::fileCalls().setPatience(test::kDeadline);
  EXPECT_EQ(ask(m_root + "/hung/deep/y"), os::FileAnswer::StillAway);
  EXPECT_EQ(ask(m_root + "/link/z"), os::FileAnswer::StillAway);
  EXPECT_EQ(ask(m_root + "/./hung/../link"), os::FileAnswer::StillAway);
  EXPECT_EQ(ask(m_root + "/x"), os::FileAnswer::InTime);
  os::fileCalls().setPatience(before);
}

}  // namespace
