// The entry point of the test programs. Everything is logged, and nothing is seen of it: tests that
// look at the log take a LogCapture.

#include <gmock/gmock.h>

#include "Os/Environment.h"
#include "Utils/Log.h"

namespace {

class SilentSinks : public utils::LogSinks {
 public:
  void writeEventLog(const std::string&) noexcept override {}
  void writeDebugChannel(const std::string&) noexcept override {}
  void writeStandardError(const std::string&) noexcept override {}
};

}  // namespace

int main(int argc, char** argv) {
  os::setEnvironment("ZOLAN_Quorvel_LOG_LEVEL", "3");
  // Never destroyed: objects that die after main() still log.
  static auto* sinks = new SilentSinks;
  utils::exchangeLogSinks(sinks);
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
