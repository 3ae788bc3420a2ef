#include "tests/http/RawClient.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <csignal>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include "tests/support/WaitUntil.h"

namespace test {
namespace {

constexpr std::string_view kHeadEnd = "\r\n\r\n";
constexpr std::string_view kLength = "Content-Length: ";

void check(bool isDone, const char* what) {
  if (!isDone) {
    throw std::runtime_error(std::string("no connection: ") + what);
  }
}

int connectTo(const RawClient::Options& options, std::uint16_t port) {
  sockaddr_in address4{};
  sockaddr_in6 address6{};
  const bool isIpv6 = options.address.find(':') != std::string::npos;
  const int family = isIpv6 ? AF_INET6 : AF_INET;
  void* const place = isIpv6 ? static_cast<void*>(&address6.sin6_addr) : &address4.sin_addr;
  check(inet_pton(family, options.address.c_str(), place) == 1, "address");
  address4.sin_family = AF_INET;
  address4.sin_port = htons(port);
  address6.sin6_family = AF_INET6;
  address6.sin6_port = htons(port);
  const int descriptor = socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  check(descriptor >= 0, "socket");
  const timeval timeout{kDeadline.count(), 0};
  setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
  setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &timeout, sizeof timeout);
  const int on = 1;
  setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  if (options.receiveBuffer != 0) {
    setsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &options.receiveBuffer,
               sizeof options.receiveBuffer);
  }
  const auto* const address = isIpv6 ? reinterpret_cast<const sockaddr*>(&address6)
                                     : reinterpret_cast<const sockaddr*>(&address4);
  const socklen_t size = isIpv6 ? sizeof address6 : sizeof address4;
  if (connect(descriptor, address, size) != 0) {
    close(descriptor);
    check(false, "connect");
  }
  return descriptor;
}

}  // namespace

RawClient::RawClient(std::uint16_t port, const Options& options)
    : m_socket(connectTo(options, port)) {
  std::signal(SIGPIPE, SIG_IGN);  // OpenSSL writes in a way that raises it
  if (!options.isTls) {
    return;
  }
  m_settings = SSL_CTX_new(TLS_client_method());
  if (options.tlsVersion != 0) {
    SSL_CTX_set_security_level(m_settings, 0);
    SSL_CTX_set_min_proto_version(m_settings, options.tlsVersion);
    SSL_CTX_set_max_proto_version(m_settings, options.tlsVersion);
  }
  m_session = SSL_new(m_settings);
  SSL_set_fd(m_session, m_socket);
  if (SSL_connect(m_session) != 1) {
    SSL_free(m_session);
    SSL_CTX_free(m_settings);
    close(m_socket);
    check(false, "TLS");
  }
}

RawClient::~RawClient() {
  SSL_free(m_session);
  SSL_CTX_free(m_settings);
  if (m_socket >= 0) {
    close(m_socket);
  }
}

bool RawClient::send(std::string_view bytes) {
  while (!bytes.empty()) {
    const long count = m_session != nullptr
                           ? SSL_write(m_session, bytes.data(), static_cast<int>(bytes.size()))
                           : ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count <= 0) {
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

void RawClient::endSending() {
  if (m_session != nullptr) {
    SSL_shutdown(m_session);
  } else {
    shutdown(m_socket, SHUT_WR);
  }
}

void RawClient::reset() {
  const linger hard{1, 0};
  setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
  close(m_socket);
  m_socket = -1;
}

std::string RawClient::readAnswer() {
  std::string answer = readHead();
  const std::size_t place = answer.find(kLength);
  if (place != std::string::npos) {
    answer += readBytes(std::stoul(answer.substr(place + kLength.size())));
  }
  return answer;
}

std::string RawClient::readHead() {
  while (m_received.find(kHeadEnd) == std::string::npos) {
    if (!readMore()) {
      return readBytes(m_received.size());
    }
  }
  return readBytes(m_received.find(kHeadEnd) + kHeadEnd.size());
}

bool RawClient::isReadable() const {
  pollfd asked{m_socket, POLLIN, 0};
  return !m_received.empty() || poll(&asked, 1, 0) == 1;
}

std::string RawClient::readToEnd() {
  while (readMore()) {
  }
  return readBytes(m_received.size());
}

std::string RawClient::readBytes(std::size_t count) {
  while (m_received.size() < count && readMore()) {
  }
  const std::string bytes = m_received.substr(0, count);
  m_received.erase(0, bytes.size());
  return bytes;
}

bool RawClient::readMore() {
  std::array<char, 16384> bytes{};
  errno = 0;
  const long count = m_session != nullptr
                         ? SSL_read(m_session, bytes.data(), static_cast<int>(bytes.size()))
                         : recv(m_socket, bytes.data(), bytes.size(), 0);
  if (count > 0) {
    m_received.append(bytes.data(), static_cast<std::size_t>(count));
    return true;
  }
  m_wasReset = errno == ECONNRESET;
  if (errno == EAGAIN) {
    throw std::runtime_error("nothing came, and the connection is open");
  }
  return false;
}

std::string statusOf(const std::string& answer) {
  return answer.substr(0, 9) == "HTTP/1.1 " ? answer.substr(9, 3) : "no status";
}

std::string bodyOf(const std::string& answer) {
  const std::size_t place = answer.find(kHeadEnd);
  return place == std::string::npos ? "no body" : answer.substr(place + kHeadEnd.size());
}

}  // namespace test
