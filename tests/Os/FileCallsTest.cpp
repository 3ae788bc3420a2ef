#include <atomic>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <gmock/gmock.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Os/FileCalls.h"
#include "Os/FilePlace.h"
#include "tests/Os/HungDirectory.h"
#include "tests/Os/SystemFaults.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"
#include "tests/support/WaitUntil.h"

namespace {

using os::FileAnswer;
using std::chrono::milliseconds;
using test::HeldCall;

// Calls that are given up at once, unless they have ended by then.
class FileCalls : public testing::Test {
 protected:
  FileAnswer makeHeld(const HeldCall& held, const std::string& place = "/mnt") {
    m_calls.setPatience(milliseconds(1));
    const FileAnswer answer = m_calls.makeAt(place, held.call());
    m_calls.setPatience(test::kDeadline);
    return answer;
  }
  FileAnswer makeQuick(const std::string& place) {
    return m_calls.makeAt(place, [count = m_count] { ++*count; });
  }

  test::TempDirectory m_directory;
  os::FileCalls m_calls{test::kDeadline};
  std::shared_ptr<std::atomic<int>> m_count = std::make_shared<std::atomic<int>>(0);
};

TEST_F(FileCalls, AreMadeOnAThreadOfTheirOwn) {
  std::thread::id thread;

  EXPECT_EQ(m_calls.makeAt("/fw", [&thread] { thread = std::this_thread::get_id(); }),
            FileAnswer::InTime);
  EXPECT_NE(thread, std::thread::id());
  EXPECT_NE(thread, std::this_thread::get_id());
}

TEST_F(FileCalls, AreMadeByWhoeverAsksWhereNoThreadCanBeStarted) {
  std::thread::id thread;
  const test::FailingCall noThread(test::SystemCall::StartThread, EAGAIN);

  EXPECT_EQ(m_calls.makeAt("/fw", [&thread] { thread = std::this_thread::get_id(); }),
            FileAnswer::InTime);
  EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST_F(FileCalls, ThrowWhatTheCallThrows) {
  EXPECT_THAT(
      [this] {
        static_cast<void>(m_calls.makeAt("/fw", [] { throw std::runtime_error("no disk"); }));
      },
      test::ThrowsExactly<std::runtime_error>("no disk"));
  EXPECT_EQ(makeQuick("/fw"), FileAnswer::InTime);
}

TEST_F(FileCalls, AreGivenUpWhenTheirPatienceIsOver) {
  HeldCall held;

  EXPECT_EQ(makeHeld(held), FileAnswer::GivenUp);
  EXPECT_FALSE(held.hasReturned());
}

TEST_F(FileCalls, AreNotMadeWhereOneIsAway) {
  HeldCall held;
  ASSERT_EQ(makeHeld(held), FileAnswer::GivenUp);

  EXPECT_EQ(makeQuick("/mnt"), FileAnswer::StillAway);
  EXPECT_EQ(*m_count, 0);
  EXPECT_EQ(makeQuick("/fw"), FileAnswer::InTime);
  EXPECT_EQ(*m_count, 1);
}

TEST_F(FileCalls, AreMadeAgainWhenTheOneCameBack) {
  HeldCall held;
  EXPECT_EQ(m_calls.countAway(), 0u);
  ASSERT_EQ(makeHeld(held), FileAnswer::GivenUp);
  EXPECT_EQ(m_calls.countAway(), 1u);
  held.release();

  EXPECT_TRUE(test::waitUntil([this] { return m_calls.countAway() == 0; }));
  EXPECT_TRUE(held.hasReturned());
  EXPECT_EQ(makeQuick("/mnt"), FileAnswer::InTime);
}

TEST_F(FileCalls, AreNotMadeAnywhereWhenTooManyAreAway) {
  std::vector<HeldCall> held(os::FileCalls::kMostAway);
  for (std::size_t i = 0; i < held.size(); ++i) {
    ASSERT_EQ(makeHeld(held[i], std::to_string(i)), FileAnswer::GivenUp);
  }

  EXPECT_EQ(makeQuick("/fw"), FileAnswer::StillAway);
  held[0].release();
  EXPECT_TRUE(test::waitUntil([this] { return makeQuick("/fw") == FileAnswer::InTime; }));
}

TEST_F(FileCalls, MayOutliveTheirMaker) {
  HeldCall held;
  {
    os::FileCalls calls(milliseconds(1));
    ASSERT_EQ(calls.makeAt("/mnt", held.call()), FileAnswer::GivenUp);
  }
  held.release();
  EXPECT_TRUE(test::waitUntil([&held] { return held.hasReturned(); }));
}

TEST_F(FileCalls, ByPathLeadToTheFileSystemThatIsAway) {
  std::string fileSystem;
  os::walkPlaces("/", [&fileSystem](const std::string& name, const std::string&) {
    fileSystem = name;
    return false;
  });
  HeldCall held;
  ASSERT_EQ(makeHeld(held, fileSystem), FileAnswer::GivenUp);

  EXPECT_EQ(m_calls.make("/", [count = m_count] { ++*count; }), FileAnswer::StillAway);
  EXPECT_EQ(*m_count, 0);
  held.release();
  EXPECT_TRUE(test::waitUntil(
      [this] { return m_calls.make("/", [count = m_count] { ++*count; }) == FileAnswer::InTime; }));
}

TEST_F(FileCalls, ByPathAreAwayInTheirFileSystem) {
  HeldCall held;
  m_calls.setPatience(milliseconds(1));
  const std::string path = (m_directory.path() / "held").string();
  ASSERT_EQ(m_calls.make(path, held.call()), FileAnswer::GivenUp);
  m_calls.setPatience(test::kDeadline);
  // It may not even have come there in that time.
  ASSERT_TRUE(test::waitUntil([&held] { return held.hasBegun(); }));
  const std::string other = (m_directory.path() / "other").string();
  EXPECT_EQ(m_calls.make(other, [count = m_count] { ++*count; }), FileAnswer::StillAway);
  EXPECT_EQ(*m_count, 0);
  held.release();
  EXPECT_TRUE(test::waitUntil([&] { return m_calls.make(path, [] {}) == FileAnswer::InTime; }));
}

TEST_F(FileCalls, ByPathAreNotMadeBelowADirectoryThatIsAway) {
  std::filesystem::create_directories(m_directory.path() / "away" / "deep");
  std::filesystem::create_directory(m_directory.path() / "here");
  const auto ask = [](const std::string& path) { return os::fileCalls().make(path, [] {}); };
  const std::string root = m_directory.path().string();
  const test::HungDirectory hung(root + "/away");
  EXPECT_EQ(ask(root + "/away"), FileAnswer::StillAway);
  EXPECT_EQ(ask(root + "/away/deep/file"), FileAnswer::StillAway);
  EXPECT_EQ(ask(root + "/./here/..//away/file"), FileAnswer::StillAway);
  EXPECT_EQ(ask(root + "/here/file"), FileAnswer::InTime);
  EXPECT_EQ(ask(root), FileAnswer::InTime);
}

}  // namespace
