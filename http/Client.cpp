#include "http/Client.h"

#include <array>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/connect.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/write.hpp>
#include <exception>
#include <optional>

#include "http/Asio.h"
#include "http/ClientTls.h"
#include "http/ResponseReader.h"

namespace http {
namespace {

using Resolver = asio::ip::basic_resolver<tcp, Executor>;
using Results = Resolver::results_type;
using TlsStream = asio::ssl::stream<Socket>;

constexpr std::uint64_t kAnswerLimit = 64 * 1024 * 1024;
constexpr std::size_t kReadBytes = 16 * 1024;

// Methods whose requests say how long their body is although there is none.
bool hasBody(const std::string& method, const std::string& body) {
  return !body.empty() || (method != "GET" && method != "HEAD" && method != "OPTIONS");
}

std::string hostAndPort(const ClientOptions& options) {
  const bool isIpv6 = options.host.find(':') != std::string::npos;
  return (isIpv6 ? "[" + options.host + "]" : options.host) + ":" + std::to_string(options.port);
}

}  // namespace

struct Client::Implementation {
  explicit Implementation(ClientOptions clientOptions)
      : options(std::move(clientOptions)), strand(asio::make_strand(context)) {}

  ClientResponse send(const std::string& head, const std::string& body, bool isHead);
  void connect();
  [[nodiscard]] bool isStillOpen();
  void close();
  // Runs a task; returns false, with the connection closed, if its time was over before.
  [[nodiscard]] bool runInTime(Awaitable<void> task);

  Awaitable<void> open();
  Awaitable<void> exchange(std::array<asio::const_buffer, 2> request, ResponseReader& reader);
  Awaitable<void> write(std::array<asio::const_buffer, 2> request);
  Awaitable<void> readSome();

  [[nodiscard]] ClientFault lateFault(const std::string& what) const;
  [[nodiscard]] ClientFault connectFault() const;
  [[nodiscard]] ClientFault answerFault(const ResponseReader& reader) const;

  const ClientOptions options;
  const std::string server = hostAndPort(options);
  asio::io_context context{1};
  Executor strand;
  std::optional<asio::ssl::context> tls;
  // One of them, where there is a connection.
  std::optional<Socket> plain;
  std::optional<TlsStream> encrypted;

  std::string received;  // not taken yet
  std::array<char, kReadBytes> readBuffer{};
  error_code fault;  // of the last operation
  bool isResolved = false;
};

ClientResponse Client::Implementation::send(const std::string& head, const std::string& body,
                                            bool isHead) {
  bool isNew = !isStillOpen();
  if (isNew) {
    connect();
  }
  while (true) {
    ResponseReader reader(isHead, kAnswerLimit);
    if (!runInTime(exchange({asio::buffer(head), asio::buffer(body)}, reader))) {
      throw lateFault("did not answer");
    }
    if (reader.isComplete()) {
      if (!reader.isKeptAlive()) {
        close();
      }
      return reader.response();
    }
    close();
    if (isNew || reader.isBegun()) {
      throw answerFault(reader);
    }
    connect();
    isNew = true;
  }
}

void Client::Implementation::connect() {
  if (options.isTls && !tls) {
    tls.emplace(makeClientTls(options.caFile));
  }
  close();
  if (!runInTime(open())) {
    throw lateFault("could not be reached");
  }
  if (fault) {
    const ClientFault reason =
        isResolved && encrypted && encrypted->next_layer().is_open()
            ? describeHandshakeFault(encrypted->native_handle(), fault, server)
            : connectFault();
    close();
    throw reason;
  }
}

// A server closes a connection that it has kept long enough: then there is its end to be read. What
// else it may have sent there is no answer to anything.
bool Client::Implementation::isStillOpen() {
  if (!plain && !encrypted) {
    return false;
  }
  Socket& socket = plain ? *plain : encrypted->next_layer();
  error_code reason;
  socket.non_blocking(true, reason);
  char byte = 0;
  socket.receive(asio::buffer(&byte, 1), Socket::message_peek, reason);
  // Over TLS, tickets for later sessions may stand there.
  const bool isOpen = reason == asio::error::would_block || (encrypted && !reason);
  if (!isOpen) {
    close();
  }
  return isOpen;
}

void Client::Implementation::close() {
  plain.reset();
  encrypted.reset();
  received.clear();
}

bool Client::Implementation::runInTime(Awaitable<void> task) {
  bool isDone = false;
  std::exception_ptr thrown;
  asio::co_spawn(strand, std::move(task), [&](const std::exception_ptr& exception) {
    isDone = true;
    thrown = exception;
  });
  context.restart();
  context.run_for(options.timeout);
  const bool isInTime = isDone;
  if (!isDone) {
    error_code ignored;
    if (plain) {
      plain->close(ignored);
    }
    if (encrypted) {
      encrypted->next_layer().close(ignored);
    }
    context.restart();
    context.run();
    close();
  }
  if (thrown) {
    std::rethrow_exception(thrown);
  }
  return isInTime;
}

Awaitable<void> Client::Implementation::open() {
  isResolved = false;
  Resolver resolver(strand);
  const std::string service = std::to_string(options.port);
  auto [resolveFault, results] = co_await resolver.async_resolve(options.host, service, kAwait);
  fault = resolveFault;
  if (fault) {
    co_return;
  }
  isResolved = true;
  if (options.isTls) {
    encrypted.emplace(Socket(strand), *tls);
    setExpectedHost(encrypted->native_handle(), options.host);
  } else {
    plain.emplace(strand);
  }
  Socket& socket = plain ? *plain : encrypted->next_layer();
  const auto [connectFault, endpoint] = co_await asio::async_connect(socket, results, kAwait);
  static_cast<void>(endpoint);
  fault = connectFault;
  if (fault) {
    error_code ignored;
    socket.close(ignored);
    co_return;
  }
  error_code ignored;
  socket.set_option(tcp::no_delay(true), ignored);
  if (encrypted) {
    const auto [handshakeFault] =
        co_await encrypted->async_handshake(asio::ssl::stream_base::client, kAwait);
    fault = handshakeFault;
  }
}

Awaitable<void> Client::Implementation::exchange(std::array<asio::const_buffer, 2> request,
                                                 ResponseReader& reader) {
  // A server that refuses a request may do so before it has read it all: its answer counts, not
  // that the rest could not be written.
  co_await write(request);
  while (!reader.isComplete() && !reader.fault()) {
    co_await readSome();
    if (fault) {
      if (fault == asio::error::eof) {
        reader.takeEnd();
      }
      co_return;
    }
    received.erase(0, reader.take(received));
  }
}

Awaitable<void> Client::Implementation::write(std::array<asio::const_buffer, 2> request) {
  if (plain) {
    const auto [reason, count] = co_await asio::async_write(*plain, request, kAwait);
    static_cast<void>(count);
    fault = reason;
  } else {
    const auto [reason, count] = co_await asio::async_write(*encrypted, request, kAwait);
    static_cast<void>(count);
    fault = reason;
  }
}

Awaitable<void> Client::Implementation::readSome() {
  const asio::mutable_buffer space = asio::buffer(readBuffer);
  if (plain) {
    const auto [reason, count] = co_await plain->async_read_some(space, kAwait);
    fault = reason;
    received.append(readBuffer.data(), count);
  } else {
    const auto [reason, count] = co_await encrypted->async_read_some(space, kAwait);
    fault = reason;
    received.append(readBuffer.data(), count);
  }
}

ClientFault Client::Implementation::lateFault(const std::string& what) const {
  return ClientFault("The server " + server + " " + what + " within " +
                     std::to_string(options.timeout.count()) +
                     " ms. Check that it runs and that no firewall is in between, or wait longer.");
}

ClientFault Client::Implementation::connectFault() const {
  if (!isResolved) {
    return ClientFault("The name '" + options.host + "' cannot be resolved: " + fault.message() +
                           ". Check its spelling, or use an address.",
                       fault == asio::error::host_not_found_try_again
                           ? ClientFault::Kind::Connection
                           : ClientFault::Kind::Usage);
  }
  if (fault == asio::error::connection_refused) {
    return ClientFault("The server " + server +
                       " refused the connection. Check that it runs and listens on this port.");
  }
  return ClientFault("Cannot connect to " + server + ": " + fault.message() + ".");
}

ClientFault Client::Implementation::answerFault(const ResponseReader& reader) const {
  const std::string subject = "The server " + server + " ";
  if (reader.isTooLarge()) {
    return ClientFault(subject + "sent an answer of more than " + std::to_string(kAnswerLimit) +
                           " bytes. Ask for less at once.",
                       ClientFault::Kind::Usage);
  }
  if (!reader.isBegun()) {
    return ClientFault(subject + "closed the connection without an answer." +
                       (options.isTls ? "" : " Is this a port for https?"));
  }
  if (!fault) {
    return ClientFault(subject + "does not answer in HTTP (" + reader.fault().message() + ")." +
                           (options.isTls ? "" : " Is this a port for https?"),
                       ClientFault::Kind::Usage);
  }
  return ClientFault(subject + "closed the connection in the middle of its answer.");
}

Client::Client(ClientOptions options)
    : m_implementation(std::make_unique<Implementation>(std::move(options))) {}

Client::~Client() = default;

ClientResponse Client::send(const std::string& method, const std::string& target,
                            const Fields& fields, const std::string& body) {
  std::string head =
      method + " " + target + " HTTP/1.1\r\nHost: " + m_implementation->server + "\r\n";
  for (const auto& [name, value] : fields) {
    head.append(name).append(": ").append(value).append("\r\n");
  }
  if (hasBody(method, body)) {
    head.append("Content-Length: ").append(std::to_string(body.size())).append("\r\n");
  }
  head.append("\r\n");
  return m_implementation->send(head, body, method == "HEAD");
}

}  // namespace http
