// Who gets a place where there are fewer than clients.

#include <algorithm>
#include <atomic>
#include <gmock/gmock.h>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "http/Status.h"
#include "tests/http/Gate.h"
#include "tests/http/TestServer.h"
#include "tests/support/LogCapture.h"
#include "tests/support/WaitUntil.h"

namespace {

using namespace std::chrono_literals;
using http::Request;
using http::Response;
using http::ServerOptions;
using test::bodyOf;
using test::Gate;
using test::RawClient;
using test::statusOf;
using test::TestServer;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kGet = "GET / HTTP/1.1\r\nHost: a\r\n\r\n";

std::string askOnce(std::uint16_t port, const RawClient::Options& options = {}) {
  RawClient client(port, options);
  client.send(kGet);
  return client.readAnswer();
}

// Clients whose requests are being handled until the end of the object.
class Busy {
 public:
  // Makes every handler of these options wait.
  static ServerOptions makeRoomFor(ServerOptions options, unsigned clients) {
    options.threads = clients + 2;
    return options;
  }
  void handle(Request& request, Response& response) {
    if (request.target() == "/busy") {
      m_gate.pass();
    }
    response.body = "done";
  }
  void add(std::uint16_t port, const RawClient::Options& options = {}) {
    m_clients.push_back(std::make_unique<RawClient>(port, options));
    m_clients.back()->send("GET /busy HTTP/1.1\r\nHost: a\r\n\r\n");
    EXPECT_TRUE(m_gate.waitForArrivals(static_cast<int>(m_clients.size())));
  }
  // Return how many get their answer.
  std::size_t finish() {
    m_gate.open();
    return countAnswers();
  }
  std::size_t askAgain() {
    for (const auto& client : m_clients) {
      client->send(kGet);
    }
    return countAnswers();
  }
  [[nodiscard]] test::FunctionHandler::Function handler() {
    return [this](Request& request, Response& response) { handle(request, response); };
  }

 private:
  [[nodiscard]] std::size_t countAnswers() {
    return static_cast<std::size_t>(
        std::count_if(m_clients.begin(), m_clients.end(),
                      [](const auto& client) { return bodyOf(client->readAnswer()) == "done"; }));
  }

  Gate m_gate;
  std::vector<std::unique_ptr<RawClient>> m_clients;
};

TEST(ServerPlaces, TellsWhoComesTooManyAndServesTheOthersOn) {
  Busy busy;
  ServerOptions options = Busy::makeRoomFor(test::onFreePort(), 3);
  options.maxConnections = 3;
  const TestServer server(options, busy.handler());
  for (int i = 0; i < 3; ++i) {
    busy.add(server.port());
  }

  RawClient tooMany(server.port());
  tooMany.send(kGet);
  const std::string refusal = tooMany.readToEnd();
  EXPECT_EQ(statusOf(refusal), "503");
  EXPECT_THAT(refusal, AllOf(HasSubstr("Retry-After: "), HasSubstr("takes: 3")));
  EXPECT_FALSE(tooMany.wasReset());
  EXPECT_EQ(busy.finish(), 3U);
  EXPECT_TRUE(test::waitUntil([&] { return statusOf(askOnce(server.port())) == "200"; }));
}

TEST(ServerPlaces, TellsWhoComesTooManyFromOneAddress) {
  Busy busy;
  ServerOptions options = Busy::makeRoomFor(test::onFreePort(), 2);
  options.endpoints.push_back({"::1", 0, false});
  options.maxConnectionsPerAddress = 2;
  const TestServer server(options, busy.handler());
  RawClient::Options version6;
  version6.address = "::1";
  busy.add(server.port(0));
  busy.add(server.port(1), version6);  // all loopback addresses are one

  const std::string refusal = askOnce(server.port());
  EXPECT_EQ(statusOf(refusal), "503");
  EXPECT_THAT(refusal, HasSubstr("from this address as it takes: 2"));
  EXPECT_EQ(busy.finish(), 2U);
}

TEST(ServerPlaces, KeepsSomeForTrustedUsers) {
  constexpr std::uint32_t kOther = 1001;
  Busy busy;
  ServerOptions options = Busy::makeRoomFor(test::onFreePort(), 16);
  options.maxConnections = 16;
  std::atomic<std::uint32_t> user{kOther};
  options.findUser = [&user](int /*socket*/) { return std::optional<std::uint32_t>(user); };
  options.trustedUsers = {0};
  const TestServer server(options, busy.handler());
  for (int i = 0; i < 15; ++i) {
    busy.add(server.port());
  }

  const std::string refusal = askOnce(server.port());
  EXPECT_EQ(statusOf(refusal), "503");
  EXPECT_THAT(refusal, HasSubstr("takes: 15"));
  user = 0;
  busy.add(server.port());
  EXPECT_THAT(askOnce(server.port()), HasSubstr("takes: 16"));
  EXPECT_EQ(busy.finish(), 16U);
}

TEST(ServerPlaces, TellsSomeOfAFloodAndClosesTheOthersAtOnce) {
  constexpr int kFlood = 200;
  Busy busy;
  ServerOptions options = Busy::makeRoomFor(test::onFreePort(), 1);
  options.maxConnections = 1;
  const TestServer server(options, busy.handler());
  busy.add(server.port());

  std::vector<std::unique_ptr<RawClient>> flood;
  for (int i = 0; i < kFlood; ++i) {
    flood.push_back(std::make_unique<RawClient>(server.port()));
  }
  const auto told = std::count_if(flood.begin(), flood.end(), [](const auto& client) {
    return statusOf(client->readToEnd()) == "503";
  });
  EXPECT_GE(told, 32);
  EXPECT_LT(told, kFlood);
  EXPECT_EQ(busy.finish(), 1U);
}

TEST(ServerPlaces, ClosesEncryptedConnectionsThatAreTooMany) {
  Busy busy;
  ServerOptions options = Busy::makeRoomFor(test::onFreePort(true), 1);
  options.maxConnections = 1;
  const TestServer server(options, busy.handler());
  RawClient::Options encrypted;
  encrypted.isTls = true;
  busy.add(server.port(), encrypted);

  RawClient second(server.port());  // sees the end before any handshake
  EXPECT_TRUE(second.isAtEnd());
  EXPECT_EQ(busy.finish(), 1U);
}

TEST(ServerPlaces, LogsOnceThatThereAreTooMany) {
  for (const bool isTls : {false, true}) {
    const test::LogCapture log;
    {
      Busy busy;
      ServerOptions options = Busy::makeRoomFor(test::onFreePort(isTls), 1);
      options.maxConnections = 1;
      const TestServer server(options, busy.handler());
      RawClient::Options kind;
      kind.isTls = isTls;
      busy.add(server.port(), kind);
      EXPECT_THAT(log.messages("http::Server::take"), testing::IsEmpty());
      for (int i = 0; i < 3; ++i) {
        RawClient tooMany(server.port());
        std::ignore = tooMany.readToEnd();
      }
      EXPECT_EQ(busy.finish(), 1U);
    }
    EXPECT_THAT(log.messages("http::Server::take"),
                testing::ElementsAre(StartsWith("1 connections, no further ones are taken")));
  }
}

// Each fills the places with clients that keep silent in a way of their own.
class SilentClients : public testing::Test {
 protected:
  static constexpr int kPlaces = 8;

  void start(bool isTls, test::FunctionHandler::Function function = &test::echo) {
    ServerOptions options = test::onFreePort(isTls);
    options.maxConnections = kPlaces;
    m_options.isTls = isTls;
    m_server.emplace(options, std::move(function));
  }
  // Fills them, and twice more, by clients that send this.
  void fill(const std::string& bytes, const RawClient::Options& options = {}) {
    for (int i = 0; i < 3 * kPlaces; ++i) {
      m_clients.push_back(std::make_unique<RawClient>(m_server->port(), options));
      m_clients.back()->send(bytes);
    }
  }
  void expectService() { EXPECT_EQ(statusOf(askOnce(m_server->port(), m_options)), "200"); }
  // Whether the client that has waited longest has lost its place.
  [[nodiscard]] bool isFirstGone() { return m_clients.front()->isAtEnd(); }

  static bool hasWord(const std::unique_ptr<RawClient>& client) { return client->isReadable(); }
  // Waits for a client that has lost its place; returns the end where none does.
  [[nodiscard]] auto findGone() {
    auto gone = m_clients.end();
    std::ignore = test::waitUntil([&] {
      gone = std::find_if(m_clients.begin(), m_clients.end(), hasWord);
      return gone != m_clients.end();
    });
    return gone;
  }

  RawClient::Options m_options;
  std::optional<TestServer> m_server;
  std::vector<std::unique_ptr<RawClient>> m_clients;
};

TEST_F(SilentClients, GiveWay) {
  start(false);
  fill("");
  expectService();
  EXPECT_TRUE(isFirstGone());
}

TEST_F(SilentClients, GiveWayInTheMiddleOfAHead) {
  start(false);
  fill("GET / HTTP/1.1\r\nHo");
  expectService();
  EXPECT_TRUE(isFirstGone());
}

TEST_F(SilentClients, GiveWayBeforeTheirHandshake) {
  start(true);
  fill("");
  expectService();
  EXPECT_TRUE(isFirstGone());
}

TEST_F(SilentClients, GiveWayInTheMiddleOfTheirHandshake) {
  start(true);
  fill(std::string("\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03", 11));
  expectService();
  EXPECT_TRUE(isFirstGone());
}

TEST_F(SilentClients, GiveWayBehindTheirHandshake) {
  start(true);
  fill("", m_options);
  expectService();
  EXPECT_TRUE(isFirstGone());
}

TEST_F(SilentClients, GiveWayWhileTheirRefusalWaits) {
  std::atomic<int> refused{0};
  start(false, [&](Request& request, Response& response) {
    if (request.target() == "/wrong") {
      response.status = http::kStatusUnauthorized;
      response.delay = 60s;
      ++refused;
    }
  });
  for (int i = 0; i < kPlaces; ++i) {
    m_clients.push_back(std::make_unique<RawClient>(m_server->port()));
    m_clients.back()->send("GET /wrong HTTP/1.1\r\nHost: a\r\n\r\n");
  }
  ASSERT_TRUE(test::waitUntil([&] { return refused == kPlaces; }));
  expectService();
  // Two threads refuse them, so any of the first may have waited longest.
  const auto gone = findGone();
  ASSERT_NE(gone, m_clients.end());
  EXPECT_TRUE((*gone)->isAtEnd());  // without its answer: nobody gets that sooner by crowding
  EXPECT_EQ(std::count_if(m_clients.begin(), m_clients.end(), hasWord), 1);
}

TEST_F(SilentClients, GiveWayBetweenRequests) {
  start(false);
  for (int i = 0; i < kPlaces; ++i) {
    m_clients.push_back(std::make_unique<RawClient>(m_server->port()));
    m_clients.back()->send(kGet);
    ASSERT_EQ(statusOf(m_clients.back()->readAnswer()), "200");
  }
  m_clients.front()->send(kGet);  // and has been idle for a shorter time than others now
  ASSERT_EQ(statusOf(m_clients.front()->readAnswer()), "200");
  expectService();
  m_clients.front()->send(kGet);
  EXPECT_EQ(statusOf(m_clients.front()->readAnswer()), "200");
  const auto lost = std::count_if(m_clients.begin(), m_clients.end(), [](const auto& client) {
    return !client->send(kGet) || statusOf(client->readAnswer()) != "200";
  });
  EXPECT_EQ(lost, 1);
}

TEST_F(SilentClients, GiveWayAndNoRequestUnderWayDoes) {
  Busy busy;
  ServerOptions options = Busy::makeRoomFor(test::onFreePort(), 3);
  options.maxConnections = kPlaces;
  m_server.emplace(options, busy.handler());
  for (int i = 0; i < 3; ++i) {
    busy.add(m_server->port());
  }
  fill("");
  expectService();
  EXPECT_EQ(busy.finish(), 3U);
  EXPECT_EQ(busy.askAgain(), 3U);
  m_server.reset();
}

TEST_F(SilentClients, AreLoggedOnce) {
  const test::LogCapture log;
  start(false);
  fill("");
  expectService();
  m_server.reset();
  EXPECT_THAT(log.messages("http::Server::take"),
              testing::ElementsAre(HasSubstr("those give way to new ones that have been idle")));
}

// A server with one place, which a client holds whose body has not come whole.
class BegunBody : public testing::Test {
 protected:
  void begin(std::chrono::milliseconds slowBodyTime) {
    ServerOptions options = test::onFreePort();
    options.maxConnections = 1;
    options.slowBodyTime = slowBodyTime;
    m_server.emplace(options);
    // One whose head has not been read yet gives way: then another one begins.
    EXPECT_TRUE(test::waitUntil([this] {
      m_client.emplace(m_server->port());
      m_client->send("POST / HTTP/1.1\r\nHost: a\r\nContent-Length: 10\r\n\r\nbegin");
      return statusOf(askOnce(m_server->port())) == "503";
    }));
  }

  std::optional<TestServer> m_server;
  std::optional<RawClient> m_client;
};

// Who may send bodies could otherwise keep everybody out by heads alone.
TEST_F(BegunBody, GivesItsPlaceUpWhereTheRestDoesNotCome) {
  begin(200ms);
  EXPECT_TRUE(test::waitUntil([this] { return statusOf(askOnce(m_server->port())) == "200"; }));
  EXPECT_NE(statusOf(m_client->readToEnd()), "200");
}

TEST_F(BegunBody, KeepsItsPlaceWhereTheRestComesInTime) {
  begin(60s);
  m_client->send("ended");
  EXPECT_EQ(bodyOf(m_client->readAnswer()), "beginended");
}

}  // namespace
