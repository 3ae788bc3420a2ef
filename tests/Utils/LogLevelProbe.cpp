// Shows where the log sends its entries, at the level that the environment asks for: each line on
// standard output is the name of a sink and the line that the sink was given.
//
//   log_level_probe          one debug and one error entry
//   log_level_probe change   the same, then again after the variable was set to 3
//   log_level_probe race     one error entry from each of eight threads that all log first
//   log_level_probe format   says of both whether their line was built; the error entry's is lost

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <new>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "Os/Environment.h"
#include "Utils/Format.h"
#include "Utils/Log.h"
#include "tests/Os/SystemFaults.h"

namespace {

constexpr utils::LogSource kLog{"Probe"};
constexpr const char* kLongText = "a text that is longer than a string has room for by itself";

class PrintingSinks : public utils::LogSinks {
 public:
  void writeEventLog(const std::string& line) noexcept override { print("event", line); }
  void writeDebugChannel(const std::string& line) noexcept override { print("channel", line); }
  void writeStandardError(const std::string& text) noexcept override { print("stderr", text); }

 private:
  static void print(const char* sink, const std::string& line) noexcept {
    std::printf("%s %s", sink, line.c_str());
  }
};

void logBoth() {
  utils::logDebug(kLog, {"probe", 1}, "d");
  utils::logError(kLog, {"probe", 2}, "e");
  std::printf("%s\n", utils::isDebugLogged() ? "debug is logged" : "debug is not logged");
}

void race() {
  constexpr int kThreads = 8;
  std::atomic<int> ready{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&ready] {
      ready.fetch_add(1);
      while (ready.load() < kThreads) {
        std::this_thread::yield();
      }
      utils::logError(kLog, {"probe", 2}, "e");
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

// Returns whether `act` asks for memory: it then gets none.
template <class Act>
bool asksForMemory(Act act) {
  const test::FailingCall noMemory(test::SystemCall::Allocate, ENOMEM);
  act();
  try {
    static_cast<void>(utils::format("%s", kLongText));
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

void sayWhatIsBuilt() {
  utils::logDebug(kLog, {"probe", 1}, "d");  // the level is read
  const bool isDebugBuilt = asksForMemory([] {
    utils::logDebug(kLog, {"probe", 1}, "%s", kLongText);
  });
  const bool isErrorBuilt = asksForMemory([] {
    utils::logError(kLog, {"probe", 2}, "%s", kLongText);
  });
  std::printf("debug is %s, error is %s\n", isDebugBuilt ? "built" : "not built",
              isErrorBuilt ? "built" : "not built");
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view mode = argc > 1 ? argv[1] : "";
  PrintingSinks sinks;
  utils::exchangeLogSinks(&sinks);
  if (mode == "race") {
    race();
  } else if (mode == "format") {
    sayWhatIsBuilt();
  } else {
    logBoth();
  }
  if (mode == "change") {
    os::setEnvironment("ZOLAN_Quorvel_LOG_LEVEL", "3");
    logBoth();
  }
  utils::exchangeLogSinks(nullptr);
  return 0;
}
