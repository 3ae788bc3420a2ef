#include "http/Transport.h"

#include <boost/asio/error.hpp>
#include <boost/asio/ssl/error.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/write.hpp>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <string>
#include <utility>

#include "http/Answer.h"
#include "http/Status.h"

namespace http {
namespace {

// What a client gets that does not begin with a handshake.
std::string makePlainOnTlsAnswer() {
  Response response;
  response.status = kStatusBadRequest;
  response.contentType = "text/plain; charset=utf-8";
  response.body = "This port is encrypted: use https here.";
  std::string answer;
  writeHead(response, Ending::Close, answer);
  return answer + response.body;
}

class PlainConnection final : public Connection {
 public:
  PlainConnection(Service& service, Socket socket, Peer peer)
      : Connection(service, socket.get_executor(), std::move(peer), false),
        m_socket(std::move(socket)) {
    error_code ignored;  // then writing at once would wait, which loses time and nothing else
    m_socket.non_blocking(true, ignored);
  }

 private:
  Awaitable<void> handshake() override { co_return; }

  Awaitable<void> readSome() override {
    const asio::mutable_buffer space = m_buffer.space();
    const auto [fault, count] = co_await m_socket.async_read_some(space, kAwait);
    m_fault = fault;
    m_buffer.add(count);
  }

  // The system takes nearly every answer whole: that needs no turn of the event loop.
  void writeAtOnce() override {
    addWritten(m_socket.write_some(m_output, m_fault));
    if (m_fault == asio::error::would_block || m_fault == asio::error::try_again) {
      m_fault = {};
    }
  }

  Awaitable<void> writeSome() override {
    const auto [fault, count] = co_await m_socket.async_write_some(m_output, kAwait);
    m_fault = fault;
    addWritten(count);
  }

  Awaitable<void> farewell() override { co_return; }

  Socket& socket() override { return m_socket; }

  Socket m_socket;
};

class TlsConnection final : public Connection {
 public:
  TlsConnection(Service& service, Socket socket, Peer peer, asio::ssl::context& tls)
      : Connection(service, socket.get_executor(), std::move(peer), true),
        m_stream(std::move(socket), tls) {}

 private:
  Awaitable<void> handshake() override {
    const auto [fault] = co_await m_stream.async_handshake(asio::ssl::stream_base::server, kAwait);
    m_fault = fault;
    m_isEncrypted = !fault;
    const bool isPlain =
        fault.category() == asio::error::get_ssl_category() &&
        ERR_GET_REASON(static_cast<unsigned long>(fault.value())) == SSL_R_HTTP_REQUEST;
    if (isPlain) {
      const std::string answer = makePlainOnTlsAnswer();
      const asio::const_buffer text = asio::buffer(answer);
      const auto [ignored, count] = co_await asio::async_write(socket(), text, kAwait);
      static_cast<void>(ignored);
      static_cast<void>(count);
    }
  }

  Awaitable<void> readSome() override {
    const asio::mutable_buffer space = m_buffer.space();
    const auto [fault, count] = co_await m_stream.async_read_some(space, kAwait);
    m_fault = fault;
    m_buffer.add(count);
  }

  void writeAtOnce() override {}

  Awaitable<void> writeSome() override {
    const auto [fault, count] = co_await m_stream.async_write_some(m_output, kAwait);
    m_fault = fault;
    addWritten(count);
  }

  // Says that nothing follows. The other side's farewell is not waited for.
  Awaitable<void> farewell() override {
    if (!m_isEncrypted) {
      co_return;
    }
    SSL_set_shutdown(m_stream.native_handle(), SSL_RECEIVED_SHUTDOWN);
    const auto [ignored] = co_await m_stream.async_shutdown(kAwait);
    static_cast<void>(ignored);
  }

  Socket& socket() override { return m_stream.next_layer(); }

  asio::ssl::stream<Socket> m_stream;
  bool m_isEncrypted = false;
};

}  // namespace

std::shared_ptr<Connection> makeConnection(Service& service, Socket socket, Peer peer) {
  return std::make_shared<PlainConnection>(service, std::move(socket), std::move(peer));
}

std::shared_ptr<Connection> makeConnection(Service& service, Socket socket, Peer peer,
                                           asio::ssl::context& tls) {
  return std::make_shared<TlsConnection>(service, std::move(socket), std::move(peer), tls);
}

}  // namespace http
