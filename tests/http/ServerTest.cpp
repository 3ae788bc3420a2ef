#include <gmock/gmock.h>
#include <latch>
#include <memory>
#include <optional>
#include <sys/resource.h>
#include <sys/socket.h>
#include <tuple>
#include <unistd.h>
#include <vector>

#include "http/Server.h"
#include "tests/http/Gate.h"
#include "tests/http/TestServer.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"
#include "tests/support/WaitUntil.h"

namespace {

using namespace std::chrono_literals;
using http::Request;
using http::Response;
using http::Server;
using http::ServerOptions;
using http::SetupFault;
using test::bodyOf;
using test::Gate;
using test::RawClient;
using test::statusOf;
using test::TestServer;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;
using Clock = std::chrono::steady_clock;

constexpr const char* kGet = "GET / HTTP/1.1\r\nHost: a\r\n\r\n";

std::string askOnce(std::uint16_t port, const RawClient::Options& options = {}) {
  RawClient client(port, options);
  client.send(kGet);
  return client.readAnswer();
}

TEST(Server, ListensBeforeItServes) {
  test::FunctionHandler handler(&test::echo);
  Server server(test::onFreePort(), handler);
  RawClient client(server.endpoints()[0].port);
  client.send(kGet);

  std::thread thread([&] { server.run(); });

  EXPECT_EQ(bodyOf(client.readAnswer()), "GET /");
  server.stop();
  thread.join();
}

TEST(Server, ServesSeveralEndpointsPlainAndEncrypted) {
  ServerOptions options = test::onFreePort(true);
  options.endpoints = {{"127.0.0.1", 0, false}, {"127.0.0.1", 0, true}, {"::1", 0, false}};
  const TestServer server(options, [](Request& request, Response& response) {
    response.body = request.peerAddress() + (request.isEncrypted() ? " encrypted" : " plain");
  });

  EXPECT_EQ(bodyOf(askOnce(server.port(0))), "127.0.0.1 plain");
  RawClient::Options encrypted;
  encrypted.isTls = true;
  EXPECT_EQ(bodyOf(askOnce(server.port(1), encrypted)), "127.0.0.1 encrypted");
  RawClient::Options version6;
  version6.address = "::1";
  EXPECT_EQ(bodyOf(askOnce(server.port(2), version6)), "::1 plain");
}

TEST(Server, DoesNotStartOnAPortInUse) {
  const TestServer first;
  ServerOptions options;
  options.endpoints = {{"127.0.0.1", first.port(), false}};
  test::FunctionHandler handler(&test::echo);

  EXPECT_THAT([&] { Server server(options, handler); },
              test::ThrowsExactly<SetupFault>(HasSubstr("in use")));
}

TEST(Server, DoesNotStartWithoutACertificateForTls) {
  ServerOptions options = test::onFreePort(true);
  options.certificateFile.clear();
  test::FunctionHandler handler(&test::echo);

  EXPECT_THAT([&] { Server server(options, handler); },
              test::ThrowsExactly<SetupFault>(HasSubstr("certificate")));
}

TEST(Server, CanBeDestroyedWithoutHavingServed) {
  test::FunctionHandler handler(&test::echo);
  std::optional<Server> server(std::in_place, test::onFreePort(), handler);
  const RawClient client(server->endpoints()[0].port);

  server.reset();
}

TEST(Server, ServesNobodyWhereItWasStoppedBefore) {
  test::FunctionHandler handler(&test::echo);
  Server server(test::onFreePort(), handler);
  RawClient client(server.endpoints()[0].port);
  server.stop();
  server.stop();

  server.run();

  EXPECT_EQ(client.readToEnd(), "");
}

TEST(Server, EndsAtOnceWithIdleConnections) {
  for (const bool isTls : {false, true}) {
    TestServer server(test::onFreePort(isTls));
    RawClient::Options options;
    options.isTls = isTls;
    std::vector<std::unique_ptr<RawClient>> clients;
    for (int i = 0; i < 20; ++i) {
      clients.push_back(std::make_unique<RawClient>(server.port(), options));
      clients.back()->send(kGet);
      ASSERT_EQ(statusOf(clients.back()->readAnswer()), "200");
    }
    const auto begin = Clock::now();
    server.end();

    EXPECT_LT(Clock::now() - begin, 5s);
    for (const auto& client : clients) {
      EXPECT_TRUE(client->isAtEnd());
      EXPECT_FALSE(client->wasReset());
    }
  }
}

TEST(Server, LetsTheRequestsEndThatItHandlesAtTheStop) {
  Gate gate;
  TestServer server(test::onFreePort(), [&](Request& /*request*/, Response& response) {
    gate.pass();
    response.body = "done";
  });
  RawClient client(server.port());
  client.send(std::string(kGet) + kGet);
  ASSERT_TRUE(gate.waitForArrivals(1));
  server.stop();
  gate.open();

  const std::string answer = client.readToEnd();
  EXPECT_THAT(answer, HasSubstr("Connection: close\r\n"));
  EXPECT_EQ(bodyOf(answer), "done");  // and the second request is not answered
  server.join();
}

TEST(Server, LetsTheAnswersEndThatItWritesAtTheStop) {
  const std::string large(20 * 1024 * 1024, 'x');
  std::atomic<int> handled{0};
  TestServer server(test::onFreePort(), [&](Request& /*request*/, Response& response) {
    response.body = large;
    ++handled;
  });
  RawClient client(server.port());
  client.send(kGet);
  ASSERT_TRUE(test::waitUntil([&] { return handled == 1; }));
  static_cast<void>(client.readHead());
  server.stop();

  EXPECT_EQ(client.readToEnd().size(), large.size());
  server.join();
}

TEST(Server, SendsTheAnswersAtOnceThatWaitAtTheStop) {
  std::atomic<int> handled{0};
  TestServer server(test::onFreePort(), [&](Request& /*request*/, Response& response) {
    response.delay = 60s;
    response.status = 401;
    ++handled;
  });
  RawClient client(server.port());
  client.send(kGet);
  ASSERT_TRUE(test::waitUntil([&] { return handled == 1; }));
  server.stop();

  EXPECT_EQ(statusOf(client.readToEnd()), "401");
  server.join();
}

TEST(Server, TellsClientsWhoseRequestIsOnItsWayThatItStops) {
  TestServer server;
  RawClient client(server.port());
  client.send(kGet);
  static_cast<void>(client.readAnswer());
  client.send("POST / HTTP/1.1\r\nHost: a\r\nContent-Length: 10\r\nExpect: 100-continue\r\n\r\n");
  EXPECT_THAT(client.readHead(), StartsWith("HTTP/1.1 100"));
  client.send("half");
  server.stop();

  EXPECT_THAT(client.readToEnd(), AllOf(StartsWith("HTTP/1.1 503"), HasSubstr("stopped")));
  server.join();
}

TEST(Server, CutsTheConnectionsThatAreThereBehindTheClosingTime) {
  ServerOptions options = test::onFreePort();
  options.closingTime = 200ms;
  std::atomic<int> handled{0};
  TestServer server(options, [&](Request& /*request*/, Response& response) {
    response.body.assign(32 * 1024 * 1024, 'x');
    ++handled;
  });
  RawClient::Options lazy;
  lazy.receiveBuffer = 4096;
  RawClient client(server.port(), lazy);
  client.send(kGet);
  ASSERT_TRUE(test::waitUntil([&] { return handled == 1; }));
  const auto begin = Clock::now();
  server.stop();
  server.join();

  EXPECT_GE(Clock::now() - begin, 200ms);
  EXPECT_LT(Clock::now() - begin, 10s);
}

TEST(Server, TakesNoConnectionsBehindTheStop) {
  TestServer server;
  const std::uint16_t port = server.port();
  server.stop();
  server.join();

  EXPECT_TRUE(test::waitUntil([&] {
    try {
      RawClient client(port);
      return client.isAtEnd();
    } catch (const std::runtime_error&) {
      return true;
    }
  }));
}

TEST(Server, CanBeStoppedByItsHandler) {
  TestServer* stopped = nullptr;
  TestServer server(test::onFreePort(),
                    [&](Request& /*request*/, Response& /*response*/) { stopped->stop(); });
  stopped = &server;
  RawClient client(server.port());
  client.send(kGet);

  EXPECT_EQ(statusOf(client.readToEnd()), "200");
  server.join();
}

TEST(Server, WithstandsManyWhoComeTooMany) {
  ServerOptions options = test::onFreePort();
  options.maxConnections = 2;
  const TestServer server(options);
  std::vector<std::unique_ptr<RawClient>> clients;
  for (int i = 0; i < 200; ++i) {
    clients.push_back(std::make_unique<RawClient>(server.port()));
  }
  clients.clear();

  EXPECT_TRUE(test::waitUntil([&] { return statusOf(askOnce(server.port())) == "200"; }));
}

TEST(Server, ServesManyConnectionsThatStayOpen) {
  ServerOptions options = test::onFreePort();
  options.maxConnections = 300;
  options.maxConnectionsPerAddress = 300;
  const TestServer server(options);
  std::vector<std::unique_ptr<RawClient>> clients;
  for (int i = 0; i < 300; ++i) {
    clients.push_back(std::make_unique<RawClient>(server.port()));
  }
  for (int round = 0; round < 3; ++round) {
    for (const auto& client : clients) {
      client->send(kGet);
    }
    for (const auto& client : clients) {
      ASSERT_EQ(statusOf(client->readAnswer()), "200");
    }
  }
}

TEST(Server, ServesManyClientsAtTheSameTime) {
  for (const bool isTls : {false, true}) {
    std::atomic<int> handled{0};
    TestServer server(test::onFreePort(isTls), [&](Request& request, Response& response) {
      response.body.swap(request.body());
      ++handled;
    });
    constexpr int kClients = 16;
    const int requests = isTls ? 50 : 300;
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int number = 0; number < kClients; ++number) {
      threads.emplace_back([&, number] {
        RawClient::Options options;
        options.isTls = isTls;
        RawClient client(server.port(), options);
        for (int i = 0; i < requests; ++i) {
          const std::string body =
              std::to_string(number) + "/" + std::string(static_cast<std::size_t>(i) * 37, 'x');
          client.send("POST / HTTP/1.1\r\nHost: a\r\nContent-Length: " +
                      std::to_string(body.size()) + "\r\n\r\n" + body);
          wrong += bodyOf(client.readAnswer()) == body ? 0 : 1;
        }
      });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }

    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(handled, kClients * requests);
  }
}

TEST(Server, HandlesRequestsOfSeveralConnectionsAtTheSameTime) {
  Gate gate;
  const TestServer server(test::onFreePort(), [&](Request& request, Response& response) {
    if (request.target() == "/wait") {
      gate.pass();
    }
    response.body = "done";
  });
  RawClient waiting(server.port());
  waiting.send("GET /wait HTTP/1.1\r\nHost: a\r\n\r\n");
  ASSERT_TRUE(gate.waitForArrivals(1));

  EXPECT_EQ(bodyOf(askOnce(server.port())), "done");
  gate.open();
  EXPECT_EQ(bodyOf(waiting.readAnswer()), "done");
}

// What watches over the server learns by it that a request which hangs is not the end of all.
TEST(Server, LooksAfterItsConnectionsWhileARequestHangs) {
  Gate gate;
  std::atomic<int> sweeps{0};
  ServerOptions options = test::onFreePort();
  options.idleTimeout = std::chrono::milliseconds(40);
  options.onSweep = [&sweeps] { ++sweeps; };
  const TestServer server(options, [&](Request& /*request*/, Response& response) {
    gate.pass();
    response.body = "done";
  });
  RawClient waiting(server.port());
  waiting.send(kGet);
  ASSERT_TRUE(gate.waitForArrivals(1));
  const int before = sweeps;
  EXPECT_TRUE(test::waitUntil([&] { return sweeps > before + 3; }));
  gate.open();
  EXPECT_EQ(bodyOf(waiting.readAnswer()), "done");
}

TEST(Server, EndsWhileClientsComeAndGo) {
  for (int round = 0; round < 20; ++round) {
    ServerOptions options = test::onFreePort();
    options.maxConnections = 3;
    TestServer server(options);
    std::atomic<bool> isOver{false};
    std::vector<std::thread> threads;
    std::latch running(6);
    for (int number = 0; number < 6; ++number) {
      threads.emplace_back([&] {
        running.count_down();
        while (!isOver) {
          try {
            RawClient client(server.port());
            for (int i = 0; i < 5 && client.send(kGet); ++i) {
              if (statusOf(client.readAnswer()) != "200") {
                break;
              }
            }
          } catch (const std::runtime_error&) {
            continue;  // the server is gone
          }
        }
      });
    }
    running.wait();
    server.end();
    isOver = true;
    for (std::thread& thread : threads) {
      thread.join();
    }
  }
}

// The limit on open files of the whole process.
class FileLimit {
 public:
  FileLimit() { getrlimit(RLIMIT_NOFILE, &m_before); }
  FileLimit(const FileLimit&) = delete;
  FileLimit& operator=(const FileLimit&) = delete;
  ~FileLimit() { setrlimit(RLIMIT_NOFILE, &m_before); }

  void set(rlim_t files) {
    rlimit limit = m_before;
    limit.rlim_cur = files;
    setrlimit(RLIMIT_NOFILE, &limit);
  }
  void restore() { setrlimit(RLIMIT_NOFILE, &m_before); }

 private:
  rlimit m_before{};
};

TEST(Server, TriesOnWhereDescriptorsHaveRunOut) {
  test::LogCapture log;
  // A sanitizer that meets the capture for the first time looks at it through a pipe.
  utils::logError({"ServerTest"}, "test", "descriptors are there");
  FileLimit limit;
  TestServer server;
  RawClient first(server.port());
  first.send(kGet);
  ASSERT_EQ(statusOf(first.readAnswer()), "200");
  RawClient second(server.port());
  second.send(kGet);
  ASSERT_EQ(statusOf(second.readAnswer()), "200");
  // Takes a descriptor and leaves none: limit is the lowest free number once the client has one.
  const int free = socket(AF_INET, SOCK_STREAM, 0);
  ASSERT_GE(free, 0);
  close(free);
  limit.set(static_cast<rlim_t>(free) + 1);
  RawClient waiting(server.port());
  waiting.send(kGet);
  ASSERT_TRUE(test::waitUntil([&] { return !log.messages("http::Server::accept").empty(); }));
  first.send(kGet);
  EXPECT_EQ(statusOf(first.readAnswer()), "200");
  limit.restore();

  EXPECT_EQ(statusOf(waiting.readAnswer()), "200");
  EXPECT_EQ(log.messages("http::Server::accept").size(), 1U);
  EXPECT_THAT(log.messages("http::Server::accept")[0],
              AllOf(HasSubstr("takes no new connections"), HasSubstr("Too many open files")));
  server.end();
}

}  // namespace
