#include <arpa/inet.h>
#include <array>
#include <atomic>
#include <gmock/gmock.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

#include "http/Client.h"
#include "tests/http/ClientFixture.h"
#include "tests/http/TestServer.h"
#include "tests/support/WaitUntil.h"

namespace {

using namespace std::chrono_literals;
using http::Client;
using http::ClientFault;
using http::ClientOptions;
using http::ClientResponse;
using http::Request;
using http::Response;
using http::ServerOptions;
using test::expectFault;
using test::ScriptedServer;
using test::TestServer;
using test::toPort;
using testing::AllOf;
using testing::HasSubstr;

using Kind = ClientFault::Kind;

constexpr const char* kAnswer = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok";

class ClientTest : public testing::TestWithParam<bool> {};

INSTANTIATE_TEST_SUITE_P(, ClientTest, testing::Bool(),
                         [](const auto& tested) { return tested.param ? "Tls" : "Plain"; });

TEST_P(ClientTest, SendsARequestAndReturnsTheAnswer) {
  const TestServer server(test::onFreePort(GetParam()), [](Request& request, Response& response) {
    response.status = 404;
    response.contentType = "text/x";
    response.fields = "CIMError: unsupported-operation\r\n";
    response.body.append(request.method())
        .append(request.target())
        .append(request.field("X-A"))
        .append(request.field("Host"))
        .append(request.body());
  });
  Client client(toPort(server.port(), GetParam()));

  const ClientResponse response = client.send("POST", "/cimom", {{"X-A", "b"}}, "body");

  EXPECT_EQ(response.status, 404U);
  EXPECT_EQ(response.body, "POST/cimomb127.0.0.1:" + std::to_string(server.port()) + "body");
  EXPECT_EQ(response.fields.at("cimerror"), "unsupported-operation");
  EXPECT_EQ(response.fields.at("content-type"), "text/x");
}

TEST_P(ClientTest, KeepsTheConnection) {
  ServerOptions options = test::onFreePort(GetParam());
  options.maxConnections = 1;
  const TestServer server(options);
  Client client(toPort(server.port(), GetParam()));

  for (int i = 0; i < 50; ++i) {
    ASSERT_EQ(client.send("POST", "/", {}, std::to_string(i)).body, std::to_string(i));
  }
}

TEST_P(ClientTest, ConnectsAnewWhereTheServerHasClosedTheConnection) {
  ServerOptions options = test::onFreePort(GetParam());
  options.maxConnections = 1;
  const TestServer server(options,
                          [](Request& /*request*/, Response& response) { response.isLast = true; });
  Client client(toPort(server.port(), GetParam()));

  EXPECT_EQ(client.send("GET", "/", {}, "").status, 200U);
  EXPECT_TRUE(test::waitUntil([&] {
    try {
      return client.send("GET", "/", {}, "").status == 200;
    } catch (const ClientFault&) {
      return false;  // the server has not seen the end of the first one yet
    }
  }));
}

TEST_P(ClientTest, ConnectsAnewToAServerThatHasRestarted) {
  ServerOptions options = test::onFreePort(GetParam());
  std::optional<TestServer> server(std::in_place, options);
  options.endpoints[0].port = server->port();
  Client client(toPort(server->port(), GetParam()));
  EXPECT_EQ(client.send("GET", "/1", {}, "").body, "GET /1");
  server.reset();
  server.emplace(options);

  EXPECT_EQ(client.send("GET", "/2", {}, "").body, "GET /2");
}

TEST_P(ClientTest, CarriesLargeBodiesBothWays) {
  ServerOptions options = test::onFreePort(GetParam());
  options.maxBodyBytes = 16 * 1024 * 1024;
  const TestServer server(options);
  Client client(toPort(server.port(), GetParam()));
  const std::string body(8 * 1024 * 1024, 'x');

  EXPECT_TRUE(client.send("POST", "/", {}, body).body == body);
}

TEST_P(ClientTest, ReturnsARefusalThatComesWhileItSends) {
  const TestServer server(test::onFreePort(GetParam()));
  Client client(toPort(server.port(), GetParam()));

  EXPECT_EQ(client.send("POST", "/", {}, std::string(6 * 1024 * 1024, 'x')).status, 413U);
}

TEST_P(ClientTest, ReadsNoBodyInTheAnswerToAHead) {
  const TestServer server(test::onFreePort(GetParam()));
  Client client(toPort(server.port(), GetParam()));

  EXPECT_EQ(client.send("HEAD", "/", {}, "").body, "");
  EXPECT_EQ(client.send("GET", "/", {}, "").body, "GET /");
}

TEST_P(ClientTest, WaitsForAnAnswerAsLongAsItIsTold) {
  const TestServer server(test::onFreePort(GetParam()), [](Request& request, Response& response) {
    response.delay = request.target() == "/" ? 60s : 0s;
  });
  ClientOptions options = toPort(server.port(), GetParam());
  options.timeout = 500ms;
  Client client(options);

  expectFault(client, Kind::Connection,
              AllOf(HasSubstr("127.0.0.1:" + std::to_string(server.port())),
                    HasSubstr("did not answer within 500 ms")));
  EXPECT_EQ(client.send("GET", "/other", {}, "").status, 200U);
}

TEST_P(ClientTest, WaitsForAnAnswerAsLongAsTheRequestSays) {
  const TestServer server(test::onFreePort(GetParam()), [](Request& request, Response& response) {
    response.delay = request.target() == "/" ? 60s : 0s;
  });
  Client client(toPort(server.port(), GetParam()));

  try {
    static_cast<void>(client.send("GET", "/", {}, "", {false, 500ms}));
    ADD_FAILURE() << "answered";
  } catch (const ClientFault& fault) {
    EXPECT_THAT(fault.what(), HasSubstr("did not answer within 500 ms"));
  }
  EXPECT_EQ(client.send("GET", "/other", {}, "").status, 200U);
}

TEST(Client, FindsAServerByName) {
  const TestServer server;
  ClientOptions options = toPort(server.port());
  options.host = "localhost";

  EXPECT_EQ(Client(options).send("GET", "/", {}, "").body, "GET /");
}

TEST(Client, FindsAServerByItsIpv6Address) {
  const TestServer server(test::onFreePort(false, "::1"), [](Request& request, Response& response) {
    response.body = request.field("Host");
  });
  ClientOptions options = toPort(server.port());
  options.host = "::1";

  EXPECT_EQ(Client(options).send("GET", "/", {}, "").body,
            "[::1]:" + std::to_string(server.port()));
}

TEST(Client, MayBeBoundToThisMachine) {
  for (const auto& [host, address] :
       {std::pair("127.0.0.1", "127.0.0.1"), {"localhost", "127.0.0.1"}, {"::1", "::1"}}) {
    const TestServer server(test::onFreePort(false, address));
    ClientOptions options = toPort(server.port());
    options.host = host;
    options.mustBeLoopback = true;
    EXPECT_EQ(Client(options).send("GET", "/", {}, "").body, "GET /") << host;
  }
}

// Returns an address of this machine by which others reach it; empty where it has none.
std::string addressForOthers() {
  std::string found;
  ifaddrs* list = nullptr;
  EXPECT_EQ(getifaddrs(&list), 0);
  for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
    if (entry->ifa_addr == nullptr || entry->ifa_addr->sa_family != AF_INET ||
        (entry->ifa_flags & IFF_LOOPBACK) != 0) {
      continue;
    }
    std::array<char, INET_ADDRSTRLEN> text{};
    inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(entry->ifa_addr)->sin_addr,
              text.data(), text.size());
    found = text.data();
  }
  freeifaddrs(list);
  return found;
}

TEST(Client, SendsNothingToAnotherMachineWhereItIsBoundToThisOne) {
  const std::string address = addressForOthers();
  if (address.empty()) {
    GTEST_SKIP() << "this machine is connected to no other";
  }
  std::atomic<int> requests{0};
  const TestServer server(test::onFreePort(false, address.c_str()),
                          [&](Request& /*request*/, Response& /*response*/) { ++requests; });
  ClientOptions options = toPort(server.port());
  options.host = address;
  options.mustBeLoopback = true;
  Client client(options);

  expectFault(client, Kind::Usage,
              HasSubstr("leads to " + address + ", which is not this machine"));
  EXPECT_EQ(requests, 0);
}

TEST(Client, SaysThatANameIsUnknown) {
  ClientOptions options = toPort(1);
  options.host = "no-such-host.invalid";
  options.timeout = 30s;
  Client client(options);

  try {
    static_cast<void>(client.send("GET", "/", {}, ""));
    ADD_FAILURE() << "answered";
  } catch (const ClientFault& fault) {
    EXPECT_THAT(fault.what(), HasSubstr("'no-such-host.invalid' cannot be resolved"));
  }
}

TEST(Client, SaysThatNobodyListens) {
  std::uint16_t port = 0;
  {
    const TestServer server;
    port = server.port();
  }
  Client client(toPort(port));

  expectFault(client, Kind::Connection,
              AllOf(HasSubstr("127.0.0.1:" + std::to_string(port)), HasSubstr("refused")));
}

TEST(Client, SaysThatTheServerClosedTheConnection) {
  const ScriptedServer server(
      [](int connection, int /*number*/) { ScriptedServer::readRequest(connection); });
  Client client(toPort(server.port()));

  expectFault(client, Kind::Connection, HasSubstr("closed the connection without an answer"));
  EXPECT_EQ(server.countConnections(), 1);
}

TEST(Client, SaysThatTheAnswerIsCutOff) {
  const ScriptedServer server([](int connection, int /*number*/) {
    ScriptedServer::readRequest(connection);
    ScriptedServer::write(connection, "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nha");
  });
  Client client(toPort(server.port()));

  expectFault(client, Kind::Connection, HasSubstr("in the middle of its answer"));
}

TEST(Client, SaysThatTheServerDoesNotSpeakHttp) {
  const ScriptedServer server([](int connection, int /*number*/) {
    ScriptedServer::readRequest(connection);
    ScriptedServer::write(connection, "220 mail ready\r\n");
  });
  Client client(toPort(server.port()));

  expectFault(client, Kind::Usage, HasSubstr("does not answer in HTTP"));
}

TEST(Client, SaysThatAnAnswerIsTooLarge) {
  const ScriptedServer server([](int connection, int /*number*/) {
    ScriptedServer::readRequest(connection);
    ScriptedServer::write(connection, "HTTP/1.1 200 OK\r\nContent-Length: 67108865\r\n\r\n");
  });
  Client client(toPort(server.port()));

  expectFault(client, Kind::Usage, HasSubstr("more than 67108864 bytes"));
}

TEST(Client, SaysThatAHandshakeWasCutOff) {
  const ScriptedServer server([](int /*connection*/, int /*number*/) {});
  Client client(toPort(server.port(), true));

  expectFault(client, Kind::Connection, HasSubstr("closed the connection"));
}

TEST(Client, GetsTheWordOfAServerThatWantsHttps) {
  const TestServer server(test::onFreePort(true));
  Client client(toPort(server.port()));

  const ClientResponse response = client.send("GET", "/", {}, "");
  EXPECT_EQ(response.status, 400U);
  EXPECT_THAT(response.body, HasSubstr("use https"));
}

// The server reads a second request on the kept connection and closes it instead of answering.
TEST(Client, RepeatsARequestOnceThatAKeptConnectionLost) {
  const ScriptedServer server([](int connection, int /*number*/) {
    ScriptedServer::readRequest(connection);
    ScriptedServer::write(connection, kAnswer);
    ScriptedServer::readRequest(connection);
  });
  Client client(toPort(server.port()));

  EXPECT_EQ(client.send("GET", "/1", {}, "").body, "ok");
  EXPECT_EQ(client.send("GET", "/2", {}, "").body, "ok");
  EXPECT_EQ(server.countConnections(), 2);
}

TEST(Client, DoesNotRepeatARequestThatChangesSomething) {
  const ScriptedServer server([](int connection, int /*number*/) {
    ScriptedServer::readRequest(connection);
    ScriptedServer::write(connection, kAnswer);
    ScriptedServer::readRequest(connection);
  });
  Client client(toPort(server.port()));
  EXPECT_EQ(client.send("POST", "/1", {}, "").body, "ok");

  try {
    static_cast<void>(client.send("POST", "/2", {}, ""));
    ADD_FAILURE() << "answered";
  } catch (const ClientFault& fault) {
    EXPECT_THAT(fault.what(), HasSubstr("closed the connection without an answer"));
    EXPECT_TRUE(fault.mayBeDone());
  }
  EXPECT_EQ(server.countConnections(), 1);
  EXPECT_EQ(client.send("POST", "/3", {}, "").body, "ok");
}

TEST(Client, RepeatsAPostThatMayBeRepeated) {
  const ScriptedServer server([](int connection, int /*number*/) {
    ScriptedServer::readRequest(connection);
    ScriptedServer::write(connection, kAnswer);
    ScriptedServer::readRequest(connection);
  });
  Client client(toPort(server.port()));

  EXPECT_EQ(client.send("POST", "/1", {}, "", {true}).body, "ok");
  EXPECT_EQ(client.send("POST", "/2", {}, "", {true}).body, "ok");
  EXPECT_EQ(server.countConnections(), 2);
}

TEST(Client, TellsWhetherARequestThatFailedWasSent) {
  const TestServer server(test::onFreePort(false),
                          [](Request& /*request*/, Response& response) { response.delay = 60s; });
  ClientOptions options = toPort(server.port());
  options.timeout = 200ms;
  const auto isSentTo = [](const ClientOptions& place) {
    Client client(place);
    try {
      static_cast<void>(client.send("POST", "/", {}, ""));
    } catch (const ClientFault& fault) {
      return fault.mayBeDone();
    }
    ADD_FAILURE() << "answered";
    return false;
  };
  EXPECT_TRUE(isSentTo(options));
  options.port = 1;
  EXPECT_FALSE(isSentTo(options));
}

TEST(Client, DoesNotRepeatARequestWhoseAnswerHadBegun) {
  const ScriptedServer server([](int connection, int /*number*/) {
    ScriptedServer::readRequest(connection);
    ScriptedServer::write(connection, kAnswer);
    ScriptedServer::readRequest(connection);
    ScriptedServer::write(connection, "HTTP/1.1 2");
  });
  Client client(toPort(server.port()));
  EXPECT_EQ(client.send("GET", "/1", {}, "").body, "ok");

  expectFault(client, Kind::Connection, HasSubstr("in the middle of its answer"));
  EXPECT_EQ(server.countConnections(), 1);
}

}  // namespace
