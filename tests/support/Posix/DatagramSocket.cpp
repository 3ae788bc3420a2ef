#include "tests/support/Posix/DatagramSocket.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <sys/socket.h>
#include <sys/un.h>
#include <system_error>

namespace test {

DatagramSocket::DatagramSocket(const std::string& address)
    : m_socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
  sockaddr_un place{};
  place.sun_family = AF_UNIX;
  address.copy(std::data(place.sun_path), sizeof(place.sun_path) - 1);
  if (place.sun_path[0] == '@') {
    place.sun_path[0] = '\0';
  }
  if (bind(m_socket.get(), reinterpret_cast<const sockaddr*>(&place),
           static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + address.size())) != 0) {
    throw std::system_error(errno, std::generic_category(), "bind");
  }
}

std::string DatagramSocket::receive() const {
  std::array<char, 65536> buffer{};
  const ssize_t got = recv(m_socket.get(), buffer.data(), buffer.size(), MSG_DONTWAIT);
  return got < 0 ? "" : std::string(buffer.data(), static_cast<std::size_t>(got));
}

}  // namespace test
