// File systems that do not answer until a test lets them.

#ifndef ORVEX_TESTS_OS_HUNGDIRECTORY_H_
#define ORVEX_TESTS_OS_HUNGDIRECTORY_H_

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <gmock/gmock.h>
#include <memory>
#include <string>

#include "Os/FileCalls.h"
#include "Os/FilePlace.h"
#include "tests/support/WaitUntil.h"

namespace test {

// A call that comes back when the test lets it.
class HeldCall {
 public:
  ~HeldCall() { release(); }

  [[nodiscard]] std::function<void()> call() const {
    return [state = m_state] {
      state->hasBegun = true;
      state->released.get_future().wait();
      state->hasReturned = true;
    };
  }
  void release() {
    if (!m_isReleased) {
      m_isReleased = true;
      m_state->released.set_value();
    }
  }
  [[nodiscard]] bool hasBegun() const { return m_state->hasBegun; }
  [[nodiscard]] bool hasReturned() const { return m_state->hasReturned; }

 private:
  struct State {
    std::promise<void> released;
    std::atomic<bool> hasBegun{false};
    std::atomic<bool> hasReturned{false};
  };
  std::shared_ptr<State> m_state = std::make_shared<State>();
  bool m_isReleased = false;
};

// While one lives, what the process asks of files in a directory is not answered. A test has it
// when a first question was given up.
class HungDirectory {
 public:
  explicit HungDirectory(const std::string& directory) : m_directory(endOf(directory)) {
    const auto before = os::fileCalls().setPatience(std::chrono::milliseconds(1));
    EXPECT_EQ(os::fileCalls().makeAt(m_directory, m_held.call()), os::FileAnswer::GivenUp);
    os::fileCalls().setPatience(before);
  }
  HungDirectory(const HungDirectory&) = delete;
  HungDirectory& operator=(const HungDirectory&) = delete;
  ~HungDirectory() {
    m_held.release();
    EXPECT_TRUE(waitUntil(
        [this] { return os::fileCalls().makeAt(m_directory, [] {}) == os::FileAnswer::InTime; }));
  }

 private:
  // Returns the directory as calls come to it.
  static std::string endOf(const std::string& path) {
    std::string end;
    os::walkPlaces(path, [&end](const std::string&, const std::string& directory) {
      end = directory;
      return true;
    });
    return end;
  }

  const std::string m_directory;
  HeldCall m_held;
};

}  // namespace test

#endif  // ORVEX_TESTS_OS_HUNGDIRECTORY_H_
