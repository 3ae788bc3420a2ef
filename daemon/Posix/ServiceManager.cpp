#include "daemon/Posix/ServiceManager.h"

#include <chrono>
#include <cstdlib>
#include <cstring>

#include "Utils/Log.h"
#include "platform/Posix/SystemLog.h"

namespace quorveld {
namespace {

constexpr utils::LogSource kLog{"ServiceManager"};
constexpr const char* kVariable = "NOTIFY_SOCKET";
// A manager that does not read must not keep the daemon from its work and its end.
constexpr std::chrono::milliseconds kPatience{1000};

}  // namespace

ServiceManager::ServiceManager() {
  if (const char* const socket = std::getenv(kVariable)) {
    m_socket = socket;
    unsetenv(kVariable);
  }
}

void ServiceManager::tellReady(const std::string& status) const {
  send("READY=1\n", status);
}

void ServiceManager::tellStopping(const std::string& status) const {
  send("STOPPING=1\n", status);
}

void ServiceManager::tellStatus(const std::string& status) const {
  send("", status);
}

void ServiceManager::send(const std::string& state, const std::string& status) const {
  if (m_socket.empty()) {
    return;
  }
  if (const int error =
          platform::sendLocalMessage(m_socket, state + "STATUS=" + status + "\n", kPatience)) {
    utils::logError(kLog, "quorveld::ServiceManager::send", "The service manager at %s: %s",
                    m_socket.c_str(), std::strerror(error));
  }
}

}  // namespace quorveld
