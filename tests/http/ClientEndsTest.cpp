// Where answers end that do not say how long they are.

#include <array>
#include <boost/asio/ssl/context.hpp>
#include <gmock/gmock.h>
#include <memory>
#include <openssl/ssl.h>
#include <string>

#include "http/Client.h"
#include "http/ServerTls.h"
#include "tests/http/ClientFixture.h"

namespace {

using http::Client;
using test::expectFault;
using test::ScriptedServer;
using test::toPort;
using testing::HasSubstr;

using Kind = http::ClientFault::Kind;

// Of an answer without a length, the end of the connection is the end, where that is an orderly
// one.
constexpr const char* kWithoutLength = "HTTP/1.1 200 OK\r\n\r\nhalf of it";

TEST(Client, TakesTheEndOfTheConnectionForThatOfAnAnswerWithoutLength) {
  const ScriptedServer server([](int connection, int /*number*/) {
    ScriptedServer::readRequest(connection);
    ScriptedServer::write(connection, kWithoutLength);
  });
  EXPECT_EQ(Client(toPort(server.port())).send("GET", "/", {}, "").body, "half of it");
}

TEST(Client, DoesNotTakeAResetForTheEndOfAnAnswer) {
  const ScriptedServer server([](int connection, int /*number*/) {
    ScriptedServer::readRequest(connection);
    ScriptedServer::write(connection, kWithoutLength);
    const linger atOnce{1, 0};
    setsockopt(connection, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
  });
  Client client(toPort(server.port()));

  expectFault(client, Kind::Connection, HasSubstr("closed the connection"));
}

// Answers each connection in the same way, over TLS.
class TlsScript {
 public:
  explicit TlsScript(bool saysFarewell) : m_saysFarewell(saysFarewell) {}

  void operator()(int connection, int /*number*/) const {
    SSL* const session = SSL_new(m_settings->native_handle());
    SSL_set_fd(session, connection);
    std::array<char, 1024> request{};
    if (SSL_accept(session) == 1 &&
        SSL_read(session, request.data(), static_cast<int>(request.size())) > 0) {
      const std::string answer = kWithoutLength;
      EXPECT_GT(SSL_write(session, answer.data(), static_cast<int>(answer.size())), 0);
      if (m_saysFarewell) {
        SSL_shutdown(session);
      }
    }
    SSL_free(session);
  }

 private:
  const bool m_saysFarewell;
  const std::shared_ptr<boost::asio::ssl::context> m_settings =
      std::make_shared<boost::asio::ssl::context>(http::makeServerTls(
          test::sharedCertificates().certificateFile(), test::sharedCertificates().keyFile()));
};

// Anybody in between can end a connection; only the server can say farewell.
TEST(Client, TakesTheFarewellAloneForTheEndOfAnAnswerOverTls) {
  const ScriptedServer polite(TlsScript(true));
  EXPECT_EQ(Client(toPort(polite.port(), true)).send("GET", "/", {}, "").body, "half of it");
  const ScriptedServer cut(TlsScript(false));
  Client client(toPort(cut.port(), true));
  expectFault(client, Kind::Connection, HasSubstr("in the middle of its answer"));
}

}  // namespace
