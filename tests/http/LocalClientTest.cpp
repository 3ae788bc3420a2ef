// Client and server over a local socket.

#include <cstdint>
#include <gmock/gmock.h>
#include <optional>
#include <string>

#include "http/Client.h"
#include "tests/http/TestServer.h"
#include "tests/support/TempDirectory.h"

namespace {

using http::Client;
using http::ClientOptions;
using http::Request;
using http::Response;
using http::ServerOptions;
using test::TestServer;
using testing::AllOf;
using testing::HasSubstr;

class LocalClient : public testing::Test {
 protected:
  ClientOptions toSocket() const {
    ClientOptions options;
    options.path = m_path;
    options.mustBeLoopback = true;
    return options;
  }
  ServerOptions onSocket() const {
    ServerOptions options;
    options.endpoints = {{"", 0, false, m_path}};
    return options;
  }

  static std::string faultOf(Client& client) {
    try {
      return client.send("GET", "/", {}, "").body;
    } catch (const http::ClientFault& fault) {
      return fault.what();
    }
  }

  test::TempDirectory m_directory;
  const std::string m_path = (m_directory.path() / "a.sock").string();
};

TEST_F(LocalClient, IsAnsweredOverALocalSocket) {
  ServerOptions options = onSocket();
  options.findUser = [](int /*socket*/) { return std::optional<std::uint32_t>(4711); };
  const TestServer server(options, [](Request& request, Response& response) {
    response.body = std::string(request.field("Host")) + " " + request.peerAddress() + " " +
                    std::to_string(request.peerUser().value_or(0)) +
                    (request.isLoopback() ? " loopback" : "");
  });
  Client client(toSocket());
  EXPECT_EQ(client.send("GET", "/", {}, "").body, "localhost unix 4711 loopback");
  EXPECT_EQ(client.send("POST", "/", {}, "x").status, 200u);
}

TEST_F(LocalClient, SaysThatNobodyListens) {
  Client client(toSocket());
  EXPECT_THAT(faultOf(client),
              AllOf(HasSubstr("Cannot connect to unix:" + m_path), HasSubstr("quorveld runs")));
}

TEST_F(LocalClient, RefusesAPathThatNoSocketCanHave) {
  ClientOptions options;
  options.path = "/" + std::string(200, 'x');
  Client client(options);
  EXPECT_THAT(faultOf(client), HasSubstr("is none of a socket"));
}

}  // namespace
