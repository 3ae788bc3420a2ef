#include "platform/Posix/SystemLog.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <iterator>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>

#include "platform/Posix/Descriptor.h"

namespace platform {
namespace {

using Clock = std::chrono::steady_clock;

constexpr char kAbstract = '@';

struct Address {
  sockaddr_un place{};
  socklen_t length = 0;
};

Address toAddress(const std::string& socket) {
  Address address;
  address.place.sun_family = AF_UNIX;
  socket.copy(std::data(address.place.sun_path), socket.size());
  if (socket.starts_with(kAbstract)) {
    address.place.sun_path[0] = '\0';
  }
  // All bytes within the length belong to an abstract name.
  address.length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + socket.size());
  return address;
}

std::chrono::milliseconds timeUntil(Clock::time_point end) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
  return std::max(left, std::chrono::milliseconds(0));
}

// Waits until the receiver may have room, not beyond the time.
void awaitRoom(const Descriptor& sender, Clock::time_point end) {
  pollfd source{sender.get(), POLLOUT, 0};
  static_cast<void>(poll(&source, 1, static_cast<int>(timeUntil(end).count())));
}

// Has the calls that follow wait no longer than that.
bool limitWaiting(const Descriptor& sender, std::chrono::milliseconds time) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
  const std::chrono::microseconds rest = time - seconds;
  timeval limit{};
  limit.tv_sec = static_cast<decltype(limit.tv_sec)>(seconds.count());
  limit.tv_usec = static_cast<decltype(limit.tv_usec)>(rest.count());
  return setsockopt(sender.get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit)) == 0;
}

// Returns 0 or the error number. A receiver of connections that accepts none for now refuses them
// with EAGAIN, and poll() cannot wait for it to accept: the call itself has to.
int connectBy(const Descriptor& sender, const Address& address, Clock::time_point end) {
  while (true) {
    const std::chrono::milliseconds left = timeUntil(end);
    // A limit of zero would be none.
    const bool isWaiting = left.count() > 0;
    if (isWaiting && !limitWaiting(sender, left)) {
      return errno;
    }
    if (fcntl(sender.get(), F_SETFL, isWaiting ? 0 : O_NONBLOCK) != 0) {
      return errno;
    }
    if (connect(sender.get(), reinterpret_cast<const sockaddr*>(&address.place), address.length) ==
        0) {
      return 0;
    }
    if (errno != EINTR) {
      return errno;
    }
  }
}

// Returns 0 or the error number.
int sendBy(int kind, const Address& address, const std::string& text, Clock::time_point end) {
  const Descriptor sender(::socket(AF_UNIX, kind | SOCK_CLOEXEC, 0));
  if (!sender.isOpen()) {
    return errno;
  }
  if (const int error = connectBy(sender, address, end)) {
    return error;
  }
  for (std::size_t sent = 0; sent < text.size();) {
    const ssize_t count =
        send(sender.get(), text.data() + sent, text.size() - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count >= 0) {
      sent += static_cast<std::size_t>(count);
    } else if (errno != EINTR && errno != EAGAIN) {
      return errno;
    } else if (Clock::now() >= end) {
      return EAGAIN;
    } else {
      awaitRoom(sender, end);
    }
  }
  return 0;
}

// The time as the log's socket takes it, in the C locale whatever the process has.
std::string formatTime() {
  constexpr std::array<const char*, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  constexpr std::size_t kMostBytes = 64;
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  std::array<char, kMostBytes> text{};
  static_cast<void>(std::snprintf(text.data(), text.size(), "%s %2d %02d:%02d:%02d",
                                  kMonths.at(static_cast<std::size_t>(parts.tm_mon)), parts.tm_mday,
                                  parts.tm_hour, parts.tm_min, parts.tm_sec));
  return text.data();
}

}  // namespace

int sendLocalMessage(const std::string& socket, const std::string& text,
                     std::chrono::milliseconds patience) {
  if (socket.size() >= sizeof(sockaddr_un::sun_path)) {
    return ENAMETOOLONG;
  }
  const Clock::time_point end = Clock::now() + patience;
  const Address address = toAddress(socket);
  const int error = sendBy(SOCK_DGRAM, address, text, end);
  return error == EPROTOTYPE ? sendBy(SOCK_STREAM, address, text + '\0', end) : error;
}

int sendSystemLogMessage(const std::string& socket, int priority, const std::string& tag,
                         const std::string& text, std::chrono::milliseconds patience) {
  return sendLocalMessage(
      socket, "<" + std::to_string(priority) + ">" + formatTime() + " " + tag + ": " + text,
      patience);
}

}  // namespace platform
