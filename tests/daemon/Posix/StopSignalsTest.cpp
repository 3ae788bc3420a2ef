#include <atomic>
#include <cerrno>
#include <csignal>
#include <gmock/gmock.h>
#include <unistd.h>

#include "daemon/Posix/StopSignals.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Posix/ChildProcess.h"
#include "tests/support/Posix/Processes.h"
#include "tests/support/WaitUntil.h"

namespace {

// Each in a process of its own, whose signals these are.

int deliver(const std::vector<int>& signals, unsigned expectedStops, std::size_t expectedRecords) {
  const test::LogCapture log;
  const quorveld::StopSignals stopSignals;
  std::atomic<unsigned> stops{0};
  const quorveld::StopSignals::Delivery delivery(stopSignals, [&stops] { ++stops; });
  const auto isLogged = [&log](std::size_t count) {
    return log.messages("quorveld::StopSignals::Delivery::serve").size() == count;
  };
  std::size_t sent = 0;
  for (const int signal : signals) {
    kill(getpid(), signal);
    ++sent;
    if (!test::waitUntil([&] { return isLogged(sent); })) {
      return 2;
    }
  }
  return test::waitUntil([&] { return stops == expectedStops; }) && isLogged(expectedRecords) ? 0
                                                                                              : 1;
}

TEST(StopSignals, StopsOnceHoweverOftenItIsAsked) {
  test::ChildProcess child([](test::ChildProcess::Link&) {
    return deliver({SIGTERM, SIGINT, SIGTERM}, 1, 3);
  });
  EXPECT_EQ(child.wait(), 0);
}

TEST(StopSignals, GoesOnAfterAHangUp) {
  test::ChildProcess child([](test::ChildProcess::Link&) { return deliver({SIGHUP}, 0, 1); });
  EXPECT_EQ(child.wait(), 0);
}

TEST(StopSignals, DeliversASignalThatCameBefore) {
  test::ChildProcess child([](test::ChildProcess::Link&) {
    const quorveld::StopSignals signals;
    kill(getpid(), SIGTERM);
    std::atomic<bool> isStopped{false};
    const quorveld::StopSignals::Delivery delivery(signals, [&isStopped] { isStopped = true; });
    return test::waitUntil([&isStopped] { return isStopped.load(); }) ? 0 : 1;
  });
  EXPECT_EQ(child.wait(), 0);
}

TEST(StopSignals, LeavesASignalThatIsIgnoredIgnored) {
  test::ChildProcess child([](test::ChildProcess::Link&) {
    std::signal(SIGINT, SIG_IGN);
    const quorveld::StopSignals signals;
    const test::LogCapture log;
    std::atomic<unsigned> stops{0};
    const quorveld::StopSignals::Delivery delivery(signals, [&stops] { ++stops; });
    kill(getpid(), SIGINT);
    kill(getpid(), SIGTERM);
    const bool isStopped = test::waitUntil([&stops] { return stops == 1; });
    const std::vector<std::string> messages =
        log.messages("quorveld::StopSignals::Delivery::serve");
    return isStopped && messages == std::vector<std::string>{"SIGTERM: stopping"} ? 0 : 1;
  });
  EXPECT_EQ(child.wait(), 0);
}

// It would keep the flash lock that it has.
TEST(StopSignals, IsNotStoppedByATerminal) {
  test::ChildProcess child([](test::ChildProcess::Link&) {
    const quorveld::StopSignals signals;
    return std::signal(SIGTSTP, SIG_DFL) == SIG_IGN && std::signal(SIGTTOU, SIG_DFL) == SIG_IGN ? 0
                                                                                                : 1;
  });
  EXPECT_EQ(child.wait(), 0);
}

TEST(StopSignals, BearsAReaderThatGoesAway) {
  test::ChildProcess child([](test::ChildProcess::Link&) {
    const quorveld::StopSignals signals;
    const test::Pipe pipe;
    close(pipe.out());
    return write(pipe.in(), "x", 1) < 0 && errno == EPIPE ? 0 : 1;
  });
  EXPECT_EQ(child.wait(), 0);
}

TEST(StopSignals, EndsItsThreadWithoutASignal) {
  test::ChildProcess child([](test::ChildProcess::Link&) {
    const quorveld::StopSignals signals;
    const quorveld::StopSignals::Delivery delivery(signals, [] {});
    return 0;
  });
  EXPECT_EQ(child.wait(), 0);
}

}  // namespace
