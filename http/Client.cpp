#include "http/Client.h"

#include <array>
#include <boost/asio/connect.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/write.hpp>
#include <boost/system/system_error.hpp>
#include <optional>
#include <vector>

#include "http/Asio.h"
#include "http/ClientTls.h"
#include "http/Endpoint.h"
#include "http/Peer.h"
#include "http/ResolveFault.h"
#include "http/ResponseReader.h"

namespace http {
namespace {

using Resolver = asio::ip::basic_resolver<tcp, Executor>;
using Results = Resolver::results_type;
using TlsStream = asio::ssl::stream<Socket>;

constexpr std::uint64_t kAnswerLimit = 64 * 1024 * 1024;
constexpr std::size_t kReadBytes = 16 * 1024;

// Methods that ask, and change nothing.
bool isQuestion(const std::string& method) {
  return method == "GET" || method == "HEAD" || method == "OPTIONS";
}

}  // namespace

struct Client::Implementation {
  explicit Implementation(ClientOptions clientOptions)
      : options(std::move(clientOptions)), strand(asio::make_strand(context)) {}

  ClientResponse send(const std::string& head, const std::string& body, bool isHead,
                      const SendOptions& sendOptions);
  [[nodiscard]] bool isStillOpen();
  void connect();
  [[nodiscard]] std::vector<Protocol::endpoint> findEndpoints();
  [[nodiscard]] Results resolve();
  void demandLoopback();
  void handshake();
  template <class Stream>
  void exchange(Stream& stream, const std::array<asio::const_buffer, 2>& request,
                ResponseReader& reader);
  void close();

  // Waits until the operation that was started last has called finish().
  void await(const char* what);
  void finish(const error_code& reason);

  [[nodiscard]] ClientFault lateFault(const char* what, bool wasSent) const;
  [[nodiscard]] ClientFault connectFault() const;
  [[nodiscard]] ClientFault answerFault(const ResponseReader& reader) const;

  [[nodiscard]] Socket& socket() { return plain ? *plain : encrypted->next_layer(); }

  const ClientOptions options;
  const std::string server = options.path.empty() ? joinHostAndPort(options.host, options.port)
                                                  : kLocalScheme + options.path;
  // A local socket has no name of a host.
  const std::string hostField = options.path.empty() ? server : "localhost";
  asio::io_context context{1};
  Executor strand;
  std::optional<asio::ssl::context> tls;
  // One of them, where there is a connection or one is being made.
  std::optional<Socket> plain;
  std::optional<TlsStream> encrypted;
  bool isConnected = false;
  bool isSent = false;  // the request that goes over it is on its way, perhaps in part

  std::string received;  // not taken yet
  std::array<char, kReadBytes> readBuffer{};

  std::chrono::milliseconds timeout = options.timeout;  // of the request that is sent

  // The operation that was started last.
  Clock::time_point deadline;
  bool isFinished = false;
  error_code fault;
};

ClientResponse Client::Implementation::send(const std::string& head, const std::string& body,
                                            bool isHead, const SendOptions& sendOptions) {
  isSent = false;
  timeout = sendOptions.timeout.count() != 0 ? sendOptions.timeout : options.timeout;
  bool isNew = !isStillOpen();
  if (isNew) {
    connect();
  }
  const std::array<asio::const_buffer, 2> request{asio::buffer(head), asio::buffer(body)};
  while (true) {
    ResponseReader reader(isHead, kAnswerLimit);
    deadline = Clock::now() + timeout;
    if (plain) {
      exchange(*plain, request, reader);
    } else {
      exchange(*encrypted, request, reader);
    }
    if (reader.isComplete()) {
      if (!reader.isKeptAlive()) {
        close();
      }
      return reader.response();
    }
    close();
    if (isNew || !sendOptions.isRepeatable || reader.isBegun()) {
      throw answerFault(reader);
    }
    connect();
    isNew = true;
  }
}

// A server closes a connection that it has kept long enough: then there is its end to be read. What
// else it may have sent there is no answer to anything.
bool Client::Implementation::isStillOpen() {
  if (!isConnected) {
    return false;
  }
  error_code reason;
  socket().non_blocking(true, reason);
  char byte = 0;
  socket().receive(asio::buffer(&byte, 1), Socket::message_peek, reason);
  // Over TLS, tickets for later sessions may stand there.
  return reason == asio::error::would_block || (encrypted && !reason);
}

void Client::Implementation::connect() {
  close();
  if (options.isTls && !tls) {
    tls.emplace(makeClientTls(options.caFile));
  }
  deadline = Clock::now() + timeout;
  const std::vector<Protocol::endpoint> endpoints = findEndpoints();
  // One of them is there from now on, so that await() can end the connecting by closing it.
  if (options.isTls) {
    encrypted.emplace(Socket(strand), *tls);
  } else {
    plain.emplace(strand);
  }
  asio::async_connect(
      socket(), endpoints,
      [this](const error_code& reason, const Protocol::endpoint& /*endpoint*/) { finish(reason); });
  await("could not be reached");
  if (fault) {
    throw connectFault();
  }
  error_code ignored;
  socket().set_option(tcp::no_delay(true), ignored);
  if (options.mustBeLoopback) {
    demandLoopback();
  }
  if (encrypted) {
    handshake();
  }
  isConnected = true;
}

std::vector<Protocol::endpoint> Client::Implementation::findEndpoints() {
  if (!options.path.empty()) {
    try {
      return {asio::local::stream_protocol::endpoint(options.path)};
    } catch (const boost::system::system_error& reason) {
      throw ClientFault(
          "The path '" + options.path + "' is none of a socket: " + reason.code().message() + ".",
          ClientFault::Kind::Usage);
    }
  }
  const Results results = resolve();
  std::vector<Protocol::endpoint> endpoints;
  for (const auto& result : results) {
    endpoints.emplace_back(result.endpoint());
  }
  return endpoints;
}

Results Client::Implementation::resolve() {
  Resolver resolver(strand);
  Results results;
  resolver.async_resolve(options.host, std::to_string(options.port),
                         [&](const error_code& reason, const Results& found) {
                           results = found;
                           finish(reason);
                         });
  await("could not be found");
  if (fault) {
    throw describeResolveFault(options.host, fault);
  }
  return results;
}

void Client::Implementation::demandLoopback() {
  error_code reason;
  const Peer peer = describePeer(socket().remote_endpoint(reason), std::nullopt);
  if (!peer.isLoopback) {
    close();
    throw ClientFault("The name '" + options.host + "' leads to " + peer.address +
                          ", which is not this machine. Name the address 127.0.0.1 itself, or use "
                          "https.",
                      ClientFault::Kind::Usage);
  }
}

void Client::Implementation::handshake() {
  setExpectedHost(encrypted->native_handle(), options.host);
  encrypted->async_handshake(asio::ssl::stream_base::client,
                             [this](const error_code& reason) { finish(reason); });
  await("did not answer");
  if (fault) {
    throw describeHandshakeFault(encrypted->native_handle(), fault, server);
  }
}

template <class Stream>
void Client::Implementation::exchange(Stream& stream,
                                      const std::array<asio::const_buffer, 2>& request,
                                      ResponseReader& reader) {
  isSent = true;
  // A server that refuses a request may do so before it has read it all: its answer counts, not
  // that the rest could not be written.
  asio::async_write(stream, request,
                    [this](const error_code& reason, std::size_t /*count*/) { finish(reason); });
  await("did not answer");
  while (!reader.isComplete() && !reader.fault()) {
    stream.async_read_some(asio::buffer(readBuffer),
                           [this](const error_code& reason, std::size_t count) {
                             received.append(readBuffer.data(), count);
                             finish(reason);
                           });
    await("did not answer");
    if (fault == asio::error::eof) {
      reader.takeEnd();
    }
    if (fault) {
      return;
    }
    received.erase(0, reader.take(received));
  }
}

void Client::Implementation::close() {
  isConnected = false;
  isSent = false;
  plain.reset();
  encrypted.reset();
  received.clear();
}

void Client::Implementation::await(const char* what) {
  context.restart();  // it has stopped for want of work after the operation before
  context.run_until(deadline);
  if (!isFinished) {
    error_code ignored;
    if (plain || encrypted) {
      socket().close(ignored);
    }
    context.restart();
    context.run();  // the operation ends, too
    isFinished = false;
    const bool wasSent = isSent;
    close();
    throw lateFault(what, wasSent);
  }
  isFinished = false;
}

void Client::Implementation::finish(const error_code& reason) {
  fault = reason;
  isFinished = true;
}

ClientFault Client::Implementation::lateFault(const char* what, bool wasSent) const {
  return ClientFault("The server " + server + " " + what + " within " +
                         std::to_string(timeout.count()) +
                         " ms. Check that it runs and that no firewall is in between.",
                     ClientFault::Kind::Connection, wasSent);
}

ClientFault Client::Implementation::connectFault() const {
  if (!options.path.empty()) {
    const bool isNobodyThere = fault == asio::error::connection_refused ||
                               fault == boost::system::errc::no_such_file_or_directory;
    return ClientFault("Cannot connect to " + server + ": " + fault.message() + "." +
                       (isNobodyThere ? " Check that quorveld runs and listens there." : ""));
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
                       ClientFault::Kind::Usage, true);
  }
  if (!reader.isBegun()) {
    return ClientFault(subject + "closed the connection without an answer." +
                           (options.isTls ? "" : " Is this a port for https?"),
                       ClientFault::Kind::Connection, true);
  }
  if (!fault) {
    return ClientFault(subject + "does not answer in HTTP (" + reader.fault().message() + ")." +
                           (options.isTls ? "" : " Is this a port for https?"),
                       ClientFault::Kind::Usage, true);
  }
  return ClientFault(subject + "closed the connection in the middle of its answer.",
                     ClientFault::Kind::Connection, true);
}

Client::Client(ClientOptions options)
    : m_implementation(std::make_unique<Implementation>(std::move(options))) {}

Client::~Client() = default;

ClientResponse Client::send(const std::string& method, const std::string& target,
                            const Fields& fields, const std::string& body,
                            const SendOptions& options) {
  std::string head =
      method + " " + target + " HTTP/1.1\r\nHost: " + m_implementation->hostField + "\r\n";
  for (const auto& [name, value] : fields) {
    head.append(name).append(": ").append(value).append("\r\n");
  }
  // The others say how long their body is although there is none (RFC 9110, 8.6).
  if (!body.empty() || !isQuestion(method)) {
    head.append("Content-Length: ").append(std::to_string(body.size())).append("\r\n");
  }
  head.append("\r\n");
  SendOptions effective = options;
  effective.isRepeatable = options.isRepeatable || isQuestion(method);
  return m_implementation->send(head, body, method == "HEAD", effective);
}

}  // namespace http
