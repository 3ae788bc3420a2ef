#include "Utils/TimeStamp.h"

#include "Utils/Clock.h"
#include "Utils/Log.h"

namespace utils {
namespace {

constexpr LogSource kLog{"Debug"};

}  // namespace

TimeStamp::TimeStamp(std::string_view name, bool logEntry) {
  if (!isDebugLogged()) {
    return;
  }
  m_name = name;
  m_start = currentMicroseconds();
  if (logEntry) {
    logDebug(kLog, "utils::TimeStamp::Init", "      ### %s Entering '%s'", timeOfDay().c_str(),
             m_name.c_str());
  }
}

TimeStamp::~TimeStamp() {
  if (isDebugLogged()) {
    const auto milliseconds = static_cast<int>((currentMicroseconds() - m_start) / 1000);
    logDebug(kLog, "utils::TimeStamp::~TimeStamp", "### %s Leaving  '%s' after %dms ",
             timeOfDay().c_str(), m_name.c_str(), milliseconds);
  }
}

}  // namespace utils
