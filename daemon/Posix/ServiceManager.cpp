#include "daemon/Posix/ServiceManager.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "Utils/Log.h"
#include "Utils/Printable.h"
#include "platform/Posix/SystemLog.h"

namespace quorveld {
namespace {

constexpr utils::LogSource kLog{"ServiceManager"};
// A manager that does not read must not keep the daemon from its work and its end.
constexpr std::chrono::milliseconds kPatience{1000};
constexpr int kSigns = 3;  // of life in the time that the manager waits for one

// Returns what the environment has there, and removes it.
std::string takeVariable(const char* name) {
  const char* const value = std::getenv(name);
  std::string text = value != nullptr ? value : "";
  unsetenv(name);
  return text;
}

// A line behind it would be a field of its own.
std::string toField(const std::string& status) {
  return "STATUS=" + utils::toPrintable(status) + "\n";
}

}  // namespace

ServiceManager::ServiceManager(platform::Clock& clock) : m_clock(clock) {
  m_socket = takeVariable("NOTIFY_SOCKET");
  const std::string watchdog = takeVariable("WATCHDOG_USEC");
  std::int64_t microseconds = 0;
  std::from_chars(watchdog.data(), watchdog.data() + watchdog.size(), microseconds);
  m_aliveInterval = std::chrono::microseconds(std::max<std::int64_t>(microseconds, 0)) / kSigns;
}

void ServiceManager::tellReady(const std::string& status) const {
  send("READY=1\n" + toField(status));
}

void ServiceManager::tellStopping(const std::string& status) const {
  send("STOPPING=1\n" + toField(status));
}

void ServiceManager::tellAlive() const {
  const platform::Clock::Duration now = m_clock.now().time_since_epoch();
  platform::Clock::Duration::rep due = m_nextAlive.load();
  // One of those who call at the same time tells it.
  if (m_aliveInterval.count() != 0 && now.count() >= due &&
      m_nextAlive.compare_exchange_strong(due, (now + m_aliveInterval).count())) {
    send("WATCHDOG=1\n");
  }
}

void ServiceManager::tellStatus(const std::string& status) const {
  send(toField(status));
}

void ServiceManager::send(const std::string& text) const {
  if (m_socket.empty()) {
    return;
  }
  if (const int error = platform::sendLocalMessage(m_socket, text, kPatience)) {
    utils::logError(kLog, "quorveld::ServiceManager::send", "The service manager at %s: %s",
                    m_socket.c_str(), std::strerror(error));
  }
}

}  // namespace quorveld
