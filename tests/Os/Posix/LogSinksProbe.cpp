// Shows what the platform's sinks hand to the system log: its socket is replaced by one of the
// program's own, whose messages are printed on standard output without their time. Logs one debug
// and one error entry; with an argument, a hundred debug entries of each of two threads.

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <syslog.h>
#include <thread>
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

namespace {

constexpr utils::LogSource kLog{"Probe"};

void printReceived(const test::DatagramSocket& log) {
  for (std::string message = log.receive(); !message.empty(); message = log.receive()) {
    print(message);
  }
}

void logOnTwoThreads(const test::DatagramSocket& log) {
  constexpr int kRounds = 25;
  // As many as wait for a reader without any being dropped.
  constexpr int kRecords = 4;
  const auto write = [](char letter) {
    for (int i = 0; i < kRecords; ++i) {
      utils::logDebug(kLog, {"probe", 3}, "%s", std::string(40, letter).c_str());
    }
  };
  for (int round = 0; round < kRounds; ++round) {
    {
      const std::jthread one(write, 'a');
      const std::jthread other(write, 'b');
    }
    printReceived(log);
  }
}

}  // namespace

int main(int argc, char** /*argv*/) {
  const test::DatagramSocket log("@quorvel-log-probe-" + std::to_string(getpid()));
  if (argc > 1) {
    logOnTwoThreads(log);
    return 0;
  }
  utils::logDebug(kLog, {"probe", 1}, "%s", "d %d%%");
  utils::logError(kLog, {"probe", 2}, "%s", "e %n");
  printReceived(log);
  return 0;
}
