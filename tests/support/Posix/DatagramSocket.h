// A local datagram socket that a test listens on, in the place of a system's service.

#ifndef ORVEX_TESTS_SUPPORT_POSIX_DATAGRAMSOCKET_H_
#define ORVEX_TESTS_SUPPORT_POSIX_DATAGRAMSOCKET_H_

#include <string>

#include "platform/Posix/Descriptor.h"

namespace test {

class DatagramSocket {
 public:
  // `address` is a path, or "@name" for an abstract socket. Throws std::system_error.
  explicit DatagramSocket(const std::string& address);

  // Returns the next datagram, which has been sent already; empty where none has.
  [[nodiscard]] std::string receive() const;

 private:
  platform::Descriptor m_socket;
};

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_POSIX_DATAGRAMSOCKET_H_
