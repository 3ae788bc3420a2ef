#include "daemon/JobsEnd.h"

#include <exception>
#include <optional>
#include <string>

#include "Utils/Log.h"

namespace quorveld {
namespace {

constexpr utils::LogSource kLog{"JobsEnd"};

}  // namespace

void waitForJobs(const std::function<unsigned()>& count,
                 const std::function<void(unsigned running)>& report,
                 const std::function<void()>& pause) {
  std::optional<unsigned> reported;
  std::string logged;
  while (true) {
    try {
      const unsigned running = count();
      if (running == 0) {
        return;
      }
      if (running != reported) {
        reported = running;
        report(running);
      }
    } catch (const std::exception& exception) {
      // Once for each text, however often it comes.
      if (logged != exception.what()) {
        logged = exception.what();
        utils::logError(kLog, "quorveld::waitForJobs", "The running jobs cannot be counted: %s",
                        exception.what());
      }
    }
    pause();
  }
}

}  // namespace quorveld
