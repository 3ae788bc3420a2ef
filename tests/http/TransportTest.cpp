// What is different between plain and encrypted connections. What is the same: ConnectionTest.

#include <atomic>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/write.hpp>
#include <gmock/gmock.h>
#include <string>

#include "http/Clock.h"
#include "tests/http/TestServer.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"

namespace {

using namespace std::chrono_literals;
using http::Clock;
using http::ServerOptions;
using test::RawClient;
using test::TestServer;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kGet = "GET / HTTP/1.1\r\nHost: a\r\n\r\n";

RawClient::Options speaking(int version) {
  RawClient::Options options;
  options.isTls = true;
  options.tlsVersion = version;
  return options;
}

class TlsVersion : public testing::TestWithParam<int> {};

TEST_P(TlsVersion, IsServed) {
  const TestServer server(test::onFreePort(true));
  RawClient client(server.port(), speaking(GetParam()));
  client.send(kGet);

  EXPECT_EQ(client.tlsVersion(), GetParam());
  EXPECT_EQ(test::bodyOf(client.readAnswer()), "GET /");
}

INSTANTIATE_TEST_SUITE_P(, TlsVersion, testing::Values(TLS1_2_VERSION, TLS1_3_VERSION));

class OldTlsVersion : public testing::TestWithParam<int> {};

TEST_P(OldTlsVersion, IsRefused) {
  const TestServer server(test::onFreePort(true));

  EXPECT_THAT([&] { const RawClient client(server.port(), speaking(GetParam())); },
              test::ThrowsExactly<std::runtime_error>(HasSubstr("TLS")));
}

INSTANTIATE_TEST_SUITE_P(, OldTlsVersion, testing::Values(TLS1_VERSION, TLS1_1_VERSION));

TEST(TlsTransport, TellsAPlainClientToUseHttps) {
  const TestServer server(test::onFreePort(true));
  RawClient client(server.port());
  client.send(kGet);

  const std::string answer = client.readToEnd();
  EXPECT_THAT(answer, AllOf(StartsWith("HTTP/1.1 400 "), EndsWith("use https here.")));
  EXPECT_THAT(answer,
              HasSubstr("Content-Length: " + std::to_string(test::bodyOf(answer).size()) + "\r\n"));
  EXPECT_FALSE(client.wasReset());
}

TEST(TlsTransport, ClosesOnAHandshakeOfGarbage) {
  const TestServer server(test::onFreePort(true));
  RawClient client(server.port());
  client.send(std::string(1000, '\x16'));
  static_cast<void>(client.readToEnd());
  RawClient other(server.port(), speaking(0));
  other.send(kGet);

  EXPECT_EQ(test::statusOf(other.readAnswer()), "200");
}

TEST(TlsTransport, EndsAHandshakeThatTakesTooLong) {
  ServerOptions options = test::onFreePort(true);
  options.requestTimeout = 200ms;
  const TestServer server(options);
  const auto begin = Clock::now();
  RawClient client(server.port());

  EXPECT_TRUE(client.isAtEnd());
  EXPECT_GE(Clock::now() - begin, 200ms);
}

TEST(TlsTransport, DoesNotWaitForAHandshakeAtTheStop) {
  TestServer server(test::onFreePort(true));
  RawClient client(server.port());
  RawClient served(server.port(), speaking(0));
  served.send(kGet);
  static_cast<void>(served.readAnswer());
  const auto begin = Clock::now();
  server.end();

  EXPECT_LT(Clock::now() - begin, 5s);
  EXPECT_TRUE(client.isAtEnd());
}

TEST(PlainTransport, RefusesAnEncryptedClientAndGoesOn) {
  const TestServer server;

  EXPECT_THAT([&] { const RawClient client(server.port(), speaking(0)); },
              test::ThrowsExactly<std::runtime_error>(HasSubstr("TLS")));
  RawClient client(server.port());
  client.send(kGet);
  EXPECT_EQ(test::statusOf(client.readAnswer()), "200");
}

// A client that asks on and on, and reads nothing: there is no room left for the beginning of an
// answer, which a local socket takes whole or not at all.
TEST(PlainTransport, HoldsNoThreadWhereTheSystemHasNoRoomForAnAnswer) {
  constexpr int kRequests = 400;
  const test::TempDirectory directory;
  ServerOptions options = test::onFreePort();
  options.threads = 1;
  const std::string path = (directory.path() / "a.sock").string();
  options.endpoints.push_back({"", 0, false, path});
  std::atomic<int> handled{0};
  const TestServer server(options, [&handled](http::Request& request, http::Response& response) {
    response.body = request.target() == "/" ? "small" : std::string(8192, 'x');
    ++handled;
  });
  boost::asio::io_context context;
  boost::asio::local::stream_protocol::socket hasty(context);
  hasty.connect(path);
  std::string requests;
  for (int i = 0; i < kRequests; ++i) {
    requests += "GET /piece HTTP/1.1\r\nHost: a\r\n\r\n";
  }
  boost::asio::write(hasty, boost::asio::buffer(requests));
  // Meanwhile the only thread comes to the end of the room.
  for (int i = 0; i < 20; ++i) {
    RawClient client(server.port());
    client.send(kGet);
    EXPECT_EQ(test::bodyOf(client.readAnswer()), "small");
  }
  EXPECT_GT(handled, 20 + 1);
  EXPECT_LT(handled, 20 + kRequests);
}

}  // namespace
