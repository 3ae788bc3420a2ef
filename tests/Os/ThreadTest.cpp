#include <atomic>
#include <cerrno>
#include <functional>
#include <gmock/gmock.h>
#include <stdexcept>
#include <thread>
#include <utility>

#include "Utils/Exception.h"
#include "Utils/Format.h"
#include "Utils/Thread.h"
#include "tests/Os/Platform.h"
#include "tests/Os/SystemFaults.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"
#include "tests/support/VirtualSlots.h"
#include "tests/support/WaitUntil.h"

namespace {

using test::FailingCall;
using test::IsRecordOf;
using test::LogCapture;
using test::LogLevel;
using test::SystemCall;
using testing::ElementsAre;

// A thread with a body of the test's choice. Its destructor waits until a started body is entered;
// from there on only the base is left.
class BodyThread : public utils::Thread {
 public:
  explicit BodyThread(std::function<void()> body) : m_body(std::move(body)) {}
  ~BodyThread() override {
    if (m_isAwaited) {
      EXPECT_TRUE(test::waitUntil([this] { return m_isEntered.load(); }));
    }
  }

  // Starts the thread, whose body is then going to run.
  void startBody() {
    start();
    m_isAwaited = true;
  }
  void run() override {
    const std::function<void()> body = std::move(m_body);
    m_isEntered = true;
    body();
  }

 private:
  std::function<void()> m_body;
  bool m_isAwaited = false;
  std::atomic<bool> m_isEntered{false};
};

TEST(Thread, KeepsTheOrderOfItsVirtualOperations) {
  EXPECT_EQ(test::slotOf(&utils::Thread::run), 2U);
}

TEST(Thread, RunsItsBodyOnAnotherThread) {
  std::thread::id runner;
  {
    BodyThread thread([&runner] { runner = std::this_thread::get_id(); });
    thread.startBody();
  }

  EXPECT_NE(runner, std::thread::id());
  EXPECT_NE(runner, std::this_thread::get_id());
}

TEST(Thread, IsAwaitedByItsDestructor) {
  std::atomic<bool> isReleased{false};
  bool isDone = false;
  {
    BodyThread thread([&] {
      while (!isReleased) {
        std::this_thread::yield();
      }
      isDone = true;
    });
    thread.startBody();
    isReleased = true;
  }

  EXPECT_TRUE(isDone);
}

TEST(Thread, IsStartedOnce) {
  const LogCapture log;
  std::atomic<int> runs{0};
  std::string address;
  {
    BodyThread thread([&runs] { ++runs; });
    thread.startBody();
    thread.start();
    thread.start();
    address = std::to_string(
        static_cast<int>(reinterpret_cast<std::intptr_t>(static_cast<utils::Thread*>(&thread))));
  }

  EXPECT_EQ(runs.load(), 1);
  const auto refused = IsRecordOf(test::kThreadSource, LogLevel::Error, "utils::Thread::start",
                                  "Attempt to mutliple thread start " + address);
  EXPECT_THAT(log.records(), ElementsAre(refused, refused));
}

TEST(Thread, NeedNotBeStarted) {
  const LogCapture log;
  bool isRun = false;
  {
    const BodyThread thread([&isRun] { isRun = true; });
  }

  EXPECT_FALSE(isRun);
  EXPECT_TRUE(log.records().empty());
}

TEST(Thread, EndsWithoutItsBodyWhenCancelledBefore) {
  const LogCapture log;
  bool isRun = false;
  {
    BodyThread thread([&isRun] { isRun = true; });
    thread.cancel();
    thread.start();
  }

  EXPECT_FALSE(isRun);
  EXPECT_TRUE(log.records().empty());
}

TEST(Thread, RunsABodyToItsEndThatIsCancelledLater) {
  std::atomic<bool> isEntered{false};
  std::atomic<bool> isCancelled{false};
  bool isDone = false;
  {
    BodyThread thread([&] {
      isEntered = true;
      while (!isCancelled) {
        std::this_thread::yield();
      }
      isDone = true;
    });
    thread.startBody();
    EXPECT_TRUE(test::waitUntil([&] { return isEntered.load(); }));
    thread.cancel();
    isCancelled = true;
  }

  EXPECT_TRUE(isDone);
}

TEST(Thread, LogsWhatItsBodyThrows) {
  const LogCapture log;
  std::string text;
  {
    BodyThread thread([] { throw std::runtime_error("100% wrong"); });
    text = utils::format("Thread %p ended by an exception: 100%% wrong",
                         static_cast<void*>(static_cast<utils::Thread*>(&thread)));
    thread.startBody();
  }

  EXPECT_THAT(log.records(), ElementsAre(IsRecordOf(test::kThreadSource, LogLevel::Error,
                                                    "utils::Thread::enter", text)));
}

TEST(Thread, LogsThatItsBodyThrowsSomethingUnknown) {
  const LogCapture log;
  std::string text;
  {
    BodyThread thread([] { throw 42; });
    text = utils::format("Thread %p ended by an unknown exception",
                         static_cast<void*>(static_cast<utils::Thread*>(&thread)));
    thread.startBody();
  }

  EXPECT_THAT(log.records(), ElementsAre(IsRecordOf(test::kThreadSource, LogLevel::Error,
                                                    "utils::Thread::enter", text)));
}

TEST(Thread, ThrowsWhenItCannotBeStarted) {
  bool isRun = false;
  {
    BodyThread thread([&isRun] { isRun = true; });
    const auto start = [&thread] {
      const FailingCall failing(SystemCall::StartThread, EAGAIN);
      thread.start();
    };
    const std::string text =
        utils::format("Could not start thread %p. Error %d",
                      static_cast<void*>(static_cast<utils::Thread*>(&thread)), EAGAIN);
    EXPECT_THAT(start, test::ThrowsExactly<utils::Exception>(text));
    EXPECT_FALSE(isRun);

    // It does not count as started.
    thread.startBody();
  }

  EXPECT_TRUE(isRun);
}

TEST(Thread, LogsThatItCannotBeClosed) {
  const LogCapture log;
  const FailingCall failing(SystemCall::CloseThread, EINVAL);
  std::string text;
  {
    BodyThread thread([] {});
    text = utils::format("Could not close thread %p. Error %d",
                         static_cast<void*>(static_cast<utils::Thread*>(&thread)), EINVAL);
    thread.startBody();
  }

  EXPECT_THAT(log.records(), ElementsAre(IsRecordOf(test::kThreadSource, LogLevel::Error,
                                                    "utils::Thread::~Thread", text)));
}

}  // namespace
