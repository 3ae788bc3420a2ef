#include "daemon/Posix/ServiceManager.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>

#include "Os/Posix/Descriptor.h"
#include "Utils/Log.h"

namespace quorveld {
namespace {

constexpr utils::LogSource kLog{"ServiceManager"};
constexpr const char* kVariable = "NOTIFY_SOCKET";
constexpr char kAbstract = '@';

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
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  int error = ENAMETOOLONG;
  if (m_socket.size() < sizeof(address.sun_path)) {
    std::copy(m_socket.begin(), m_socket.end(), std::begin(address.sun_path));
    if (m_socket.front() == kAbstract) {
      address.sun_path[0] = '\0';
    }
    const std::size_t length = offsetof(sockaddr_un, sun_path) + m_socket.size();
    const os::Descriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const std::string message = state + "STATUS=" + status + "\n";
    const bool isSent =
        socket.isOpen() &&
        sendto(socket.get(), message.data(), message.size(), MSG_NOSIGNAL,
               reinterpret_cast<const sockaddr*>(&address), static_cast<socklen_t>(length)) >= 0;
    error = isSent ? 0 : errno;
  }
  if (error != 0) {
    utils::logError(kLog, "quorveld::ServiceManager::send", "The service manager at %s: %s",
                    m_socket.c_str(), std::strerror(error));
  }
}

}  // namespace quorveld
