// Shows what the platform's sinks hand to the system log: its socket is replaced by one of the
// program's own, whose messages are printed on standard output without their time. Logs one debug
// and one error entry.

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include "Utils/Log.h"
#include "tests/support/Posix/DatagramSocket.h"

namespace {

// Bound to what the log's socket is replaced by.
constexpr char kName[] = "\0quorvel-log-probe-";

sockaddr_un placeOfProbe(socklen_t& length) {
  sockaddr_un place{};
  place.sun_family = AF_UNIX;
  const std::string name = std::string(kName, sizeof(kName) - 1) + std::to_string(getpid());
  name.copy(place.sun_path, sizeof(place.sun_path));
  length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
  return place;
}

void print(const std::string& message) {
  // <PRIORITY>Mmm dd hh:mm:ss TEXT
  constexpr std::size_t kTimeBytes = 16;
  const std::size_t end = message.find('>');
  const int priority = std::stoi(message.substr(1, end - 1));
  const char* level = "other";
  if (priority == (LOG_USER | LOG_ERR)) {
    level = "error";
  } else if (priority == (LOG_USER | LOG_DEBUG)) {
    level = "debug";
  }
  std::printf("user.%s %s", level, message.c_str() + end + 1 + kTimeBytes);
}

}  // namespace

// The library looks for this in the program first.
#pragma GCC visibility push(default)
extern "C" int connect(int socket, const sockaddr* address, socklen_t length) {
  sockaddr_un place{};
  if (address->sa_family == AF_UNIX &&
      std::strcmp(reinterpret_cast<const sockaddr_un*>(address)->sun_path, "/dev/log") == 0) {
    place = placeOfProbe(length);
    address = reinterpret_cast<const sockaddr*>(&place);
  }
  return static_cast<int>(syscall(SYS_connect, socket, address, length));
}
#pragma GCC visibility pop

int main() {
  const test::DatagramSocket log("@quorvel-log-probe-" + std::to_string(getpid()));
  constexpr utils::LogSource kLog{"Probe"};
  utils::logDebug(kLog, {"probe", 1}, "%s", "d %d%%");
  utils::logError(kLog, {"probe", 2}, "%s", "e %n");
  for (std::string message = log.receive(); !message.empty(); message = log.receive()) {
    print(message);
  }
  return 0;
}
