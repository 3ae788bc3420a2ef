#include "daemon/Posix/LocalDatagram.h"

#include <cerrno>
#include <cstddef>
#include <iterator>
#include <sys/socket.h>
#include <sys/un.h>

#include "platform/Posix/Descriptor.h"

namespace quorveld {
namespace {

constexpr char kAbstract = '@';

}  // namespace

int sendLocalDatagram(const std::string& socket, const std::string& text) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (socket.size() >= sizeof(address.sun_path)) {
    return ENAMETOOLONG;
  }
  socket.copy(std::data(address.sun_path), socket.size());
  if (socket.starts_with(kAbstract)) {
    address.sun_path[0] = '\0';
  }
  // All bytes within the length belong to an abstract name.
  const std::size_t length = offsetof(sockaddr_un, sun_path) + socket.size();
  const platform::Descriptor sender(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  if (!sender.isOpen()) {
    return errno;
  }
  const ssize_t sent =
      sendto(sender.get(), text.data(), text.size(), MSG_NOSIGNAL,
             reinterpret_cast<const sockaddr*>(&address), static_cast<socklen_t>(length));
  return sent < 0 ? errno : 0;
}

}  // namespace quorveld
