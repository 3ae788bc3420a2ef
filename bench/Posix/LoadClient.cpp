#include "bench/LoadClient.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <charconv>
#include <memory>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kReadSize = 256 * 1024;  // an answer of 100 ports, whole
constexpr int kPatience = 30'000;              // milliseconds
constexpr std::string_view kHeaderEnd = "\r\n\r\n";
constexpr std::string_view kLengthField = "\r\nContent-Length: ";

[[noreturn]] void throwSystemError(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// A connection and the answer that is coming in.
class Connection {
 public:
  explicit Connection(std::uint16_t port)
      : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)), m_buffer(kReadSize) {
    if (m_socket < 0) {
      throwSystemError("socket");
    }
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    // A request must not wait for the acknowledgement of what was sent before it.
    const int on = 1;
    if (connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
        setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on)) != 0) {
      const int error = errno;
      close(m_socket);
      throw std::system_error(error, std::generic_category(), "connect");
    }
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() { close(m_socket); }

  [[nodiscard]] int socketNumber() const { return m_socket; }
  [[nodiscard]] Clock::time_point sentAt() const { return m_sentAt; }
  [[nodiscard]] std::size_t question() const { return m_question; }

  void send(std::size_t question, std::string_view request) {
    m_question = question;
    m_filled = 0;
    m_expected = 0;
    m_sentAt = Clock::now();
    while (!request.empty()) {
      // Blocks at no time worth mentioning: a request is small beside the socket's buffer.
      const ssize_t sent = ::send(m_socket, request.data(), request.size(), MSG_NOSIGNAL);
      if (sent < 0) {
        throwSystemError("send");
      }
      request.remove_prefix(static_cast<std::size_t>(sent));
    }
  }

  // Reads what is there. Returns whether the answer is whole.
  bool receive() {
    if (m_filled == m_buffer.size()) {
      m_buffer.resize(m_buffer.size() * 2);
    }
    const ssize_t received =
        recv(m_socket, m_buffer.data() + m_filled, m_buffer.size() - m_filled, 0);
    if (received < 0) {
      throwSystemError("recv");
    }
    if (received == 0) {
      throw std::runtime_error("the server closed a connection");
    }
    m_filled += static_cast<std::size_t>(received);
    if (m_expected == 0) {
      readHeader();
    }
    return m_expected != 0 && m_filled >= m_expected;
  }

  [[nodiscard]] std::string_view header() const { return text().substr(0, m_headerSize); }
  [[nodiscard]] std::string_view body() const { return text().substr(m_headerSize); }

 private:
  [[nodiscard]] std::string_view text() const { return {m_buffer.data(), m_filled}; }

  void readHeader() {
    const std::size_t end = text().find(kHeaderEnd);
    if (end == std::string_view::npos) {
      return;
    }
    m_headerSize = end + kHeaderEnd.size();
    const std::size_t field = text().substr(0, end).find(kLengthField);
    if (field == std::string_view::npos) {
      throw std::runtime_error("an answer without Content-Length");
    }
    const char* const number = m_buffer.data() + field + kLengthField.size();
    std::size_t length = 0;
    std::from_chars(number, m_buffer.data() + end, length);
    m_expected = m_headerSize + length;
  }

  int m_socket;
  std::vector<char> m_buffer;
  std::size_t m_filled = 0;
  std::size_t m_headerSize = 0;
  std::size_t m_expected = 0;  // bytes of the whole answer; 0: not known yet
  std::size_t m_question = 0;
  Clock::time_point m_sentAt;
};

void check(const Question& question, const Connection& connection) {
  if (!connection.header().starts_with("HTTP/1.1 200 ")) {
    throw std::runtime_error(question.name + ": " + std::string(connection.header().substr(0, 80)));
  }
  if (!question.body.empty() && connection.body() != question.body) {
    throw std::runtime_error(question.name + ": an answer is not what it was at first");
  }
}

// Waits until a connection has something to read.
void awaitAny(std::vector<pollfd>& polled) {
  const int ready = poll(polled.data(), polled.size(), kPatience);
  if (ready < 0 && errno != EINTR) {
    throwSystemError("poll");
  }
  if (ready == 0) {
    throw std::runtime_error("the server does not answer");
  }
}

}  // namespace

LoadResult load(std::uint16_t port, const std::vector<Question>& questions,
                const LoadLimits& limits) {
  std::vector<std::unique_ptr<Connection>> connections;
  std::vector<pollfd> polled;
  for (unsigned index = 0; index < limits.connections; ++index) {
    connections.push_back(std::make_unique<Connection>(port));
    polled.push_back({connections.back()->socketNumber(), POLLIN, 0});
  }

  LoadResult result;
  std::size_t asked = 0;
  std::size_t underWay = 0;
  const Clock::time_point start = Clock::now();
  const auto isOver = [&] {
    return (limits.requests != 0 && asked >= limits.requests) ||
           (limits.duration.count() != 0 && Clock::now() - start >= limits.duration);
  };
  const auto askNext = [&](Connection& connection) {
    const std::size_t question = asked++ % questions.size();
    connection.send(question, questions[question].request);
    ++underWay;
  };
  for (const auto& connection : connections) {
    if (!isOver()) {
      askNext(*connection);
    }
  }
  while (underWay > 0) {
    awaitAny(polled);
    for (std::size_t index = 0; index < polled.size(); ++index) {
      Connection& connection = *connections[index];
      if (polled[index].revents == 0 || !connection.receive()) {
        continue;
      }
      // First: the comparison is no time of the server's.
      result.latencies.push_back(Clock::now() - connection.sentAt());
      check(questions[connection.question()], connection);
      --underWay;
      ++result.answers;
      if (!isOver()) {
        askNext(connection);
      }
    }
  }
  result.time = Clock::now() - start;
  std::sort(result.latencies.begin(), result.latencies.end());
  return result;
}

std::string ask(std::uint16_t port, std::string_view request) {
  Connection connection(port);
  connection.send(0, request);
  while (!connection.receive()) {
  }
  check({"question", {}, {}}, connection);
  return std::string(connection.body());
}

}  // namespace bench
