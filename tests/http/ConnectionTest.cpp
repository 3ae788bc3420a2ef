// What clients see of a connection, byte by byte, plain and encrypted.

#include <gmock/gmock.h>
#include <stdexcept>
#include <string>
#include <tuple>

#include "http/Clock.h"
#include "tests/http/ConnectionFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/WaitUntil.h"

namespace {

using namespace std::chrono_literals;
using http::Clock;
using http::Request;
using http::Response;
using test::bodyOf;
using test::get;
using test::post;
using test::RawClient;
using test::statusOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using ConnectionTest = test::ConnectionFixture;

INSTANTIATE_TEST_SUITE_P(, ConnectionTest, testing::Bool(),
                         [](const auto& tested) { return tested.param ? "Tls" : "Plain"; });

TEST_P(ConnectionTest, AnswersARequest) {
  RawClient client = connect();
  client.send(post("hello"));

  EXPECT_EQ(client.readAnswer(),
            "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nContent-Length: 5\r\n\r\nhello");
}

TEST_P(ConnectionTest, StaysOpenForFurtherRequests) {
  RawClient client = connect();
  for (int i = 0; i < 100; ++i) {
    client.send(post(std::to_string(i)));
    ASSERT_EQ(bodyOf(client.readAnswer()), std::to_string(i));
  }
}

TEST_P(ConnectionTest, AnswersRequestsInTheirOrderThatComeAtOnce) {
  RawClient client = connect();
  std::string requests;
  for (int i = 0; i < 200; ++i) {
    requests += post(std::to_string(i));
  }
  client.send(requests);

  for (int i = 0; i < 200; ++i) {
    ASSERT_EQ(bodyOf(client.readAnswer()), std::to_string(i));
  }
}

TEST_P(ConnectionTest, ReadsARequestThatComesByteByByte) {
  RawClient client = connect();
  for (const char byte : post("hello", "A: b\r\n")) {
    client.send(std::string(1, byte));
  }

  EXPECT_EQ(bodyOf(client.readAnswer()), "hello");
}

TEST_P(ConnectionTest, OverlooksEmptyLinesBetweenRequests) {
  RawClient client = connect();
  client.send(post("1") + "\r\n\r\n" + post("2"));

  EXPECT_EQ(bodyOf(client.readAnswer()), "1");
  EXPECT_EQ(bodyOf(client.readAnswer()), "2");
}

TEST_P(ConnectionTest, ClosesWhereTheClientSaysSo) {
  const std::string answer = exchange(get("/x", "Connection: close\r\n"));

  EXPECT_EQ(bodyOf(answer), "GET /x");
  EXPECT_THAT(answer, HasSubstr("\r\nConnection: close\r\n"));
}

TEST_P(ConnectionTest, ClosesBehindARequestInHttp10) {
  EXPECT_EQ(bodyOf(exchange("GET /x HTTP/1.0\r\n\r\n")), "GET /x");
}

TEST_P(ConnectionTest, StaysOpenInHttp10WhereTheClientAsksForIt) {
  RawClient client = connect();
  client.send("GET /1 HTTP/1.0\r\nConnection: Keep-Alive\r\n\r\n");
  EXPECT_THAT(client.readAnswer(), HasSubstr("\r\nConnection: keep-alive\r\n"));
  client.send("GET /2 HTTP/1.0\r\n\r\n");

  EXPECT_EQ(bodyOf(client.readToEnd()), "GET /2");
}

TEST_P(ConnectionTest, ClosesWhereTheHandlerSaysSo) {
  start([](Request& /*request*/, Response& response) {
    response.body = "last";
    response.isLast = true;
  });

  EXPECT_EQ(bodyOf(exchange(get("/1") + get("/2"))), "last");
}

TEST_P(ConnectionTest, AnswersTheHalfOfTheConnectionThatIsLeft) {
  RawClient client = connect();
  client.send(post("hello"));
  client.endSending();

  EXPECT_EQ(bodyOf(client.readAnswer()), "hello");
  EXPECT_TRUE(client.isAtEnd());
}

TEST_P(ConnectionTest, SendsNoBodyToAHead) {
  start([](Request& request, Response& response) {
    response.body = request.method() == "HEAD" ? "twelve bytes" : "other";
  });
  RawClient client = connect();
  client.send("HEAD / HTTP/1.1\r\nHost: a\r\n\r\n" + get("/"));

  EXPECT_EQ(client.readHead(), "HTTP/1.1 200 OK\r\nContent-Length: 12\r\n\r\n");
  EXPECT_EQ(bodyOf(client.readAnswer()), "other");
}

TEST_P(ConnectionTest, JoinsTheChunksOfABody) {
  RawClient client = connect();
  client.send("POST / HTTP/1.1\r\nHost: a\r\nTransfer-Encoding: chunked\r\n\r\n");
  client.send("3\r\nabc\r\n");
  client.send("3\r\ndef\r\n0\r\n\r\n");

  EXPECT_EQ(bodyOf(client.readAnswer()), "abcdef");
}

TEST_P(ConnectionTest, AsksForABodyThatIsHeldBack) {
  RawClient client = connect();
  client.send("POST / HTTP/1.1\r\nHost: a\r\nContent-Length: 5\r\nExpect: 100-continue\r\n\r\n");
  EXPECT_EQ(client.readHead(), "HTTP/1.1 100 Continue\r\n\r\n");
  client.send("hello");

  EXPECT_EQ(bodyOf(client.readAnswer()), "hello");
}

TEST_P(ConnectionTest, DoesNotAskForABodyThatIsTooLarge) {
  m_options.maxBodyBytes = 4;

  EXPECT_EQ(statusOf(exchange("POST / HTTP/1.1\r\nHost: a\r\nContent-Length: 5\r\n"
                              "Expect: 100-continue\r\n\r\n")),
            "413");
}

TEST_P(ConnectionTest, DoesNotAskForABodyThatIsComingAlready) {
  RawClient client = connect();
  client.send(post("hello", "Expect: 100-continue\r\n"));

  EXPECT_THAT(client.readAnswer(), StartsWith("HTTP/1.1 200"));
}

TEST_P(ConnectionTest, TakesRequestsOfTheLimits) {
  m_options.maxBodyBytes = 300000;
  m_options.maxHeaderBytes = 20000;
  const std::string body(300000, 'x');
  std::string request = post(body, "A: \r\n");
  request.insert(request.find("A: ") + 3, 20000 - (request.size() - body.size()), 'y');
  ASSERT_EQ(request.find("\r\n\r\n") + 4, 20000U);
  RawClient client = connect();
  client.send(request);

  EXPECT_EQ(bodyOf(client.readAnswer()), body);
}

TEST_P(ConnectionTest, RefusesLargerHeadersAndBodies) {
  m_options.maxBodyBytes = 1000;
  m_options.maxHeaderBytes = 2000;

  const std::string large = exchange(post(std::string(1001, 'x')));
  EXPECT_EQ(statusOf(large), "413");
  EXPECT_THAT(large, HasSubstr("1000 bytes"));
  EXPECT_THAT(large, HasSubstr("\r\nConnection: close\r\n"));
  EXPECT_THAT(large, HasSubstr("\r\nContent-Type: text/plain"));
  const std::string wide = exchange(get("/", "A: " + std::string(2000, 'x') + "\r\n"));
  EXPECT_EQ(statusOf(wide), "431");
  EXPECT_THAT(wide, HasSubstr("2000 bytes"));
}

TEST_P(ConnectionTest, HearsAClientOutThatSendsMuchTooMuch) {
  RawClient client = connect();
  EXPECT_TRUE(client.send(post(std::string(5 * 1024 * 1024, 'x'))));

  EXPECT_EQ(statusOf(client.readToEnd()), "413");
  EXPECT_FALSE(client.wasReset());
}

TEST_P(ConnectionTest, RefusesWhatIsNoRequest) {
  EXPECT_EQ(statusOf(exchange("\x01\x02\x03\r\n\r\n")), "400");
  EXPECT_EQ(statusOf(exchange("PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n")), "505");
  EXPECT_EQ(statusOf(exchange(get("/", "Transfer-Encoding: gzip\r\n"))), "501");
}

TEST_P(ConnectionTest, AnswersWhatCameBeforeWhatIsNoRequest) {
  const std::string answers = exchange(get("/1") + "garbage\r\n\r\n");

  EXPECT_THAT(answers, HasSubstr("GET /1"));
  EXPECT_THAT(answers, HasSubstr("HTTP/1.1 400 Bad Request"));
}

TEST_P(ConnectionTest, TellsAClientThatItsRequestIsCutOff) {
  RawClient client = connect();
  const std::string request = post("hello");
  client.send(request.substr(0, request.size() - 1));
  client.endSending();

  const std::string answer = client.readToEnd();
  EXPECT_EQ(statusOf(answer), "400");
  EXPECT_THAT(answer, HasSubstr("incomplete"));
}

TEST_P(ConnectionTest, GoesOnBehindAHandlersFailure) {
  const test::LogCapture log;
  start([](Request& request, Response& response) {
    response.body = "half an answer";
    if (request.target() == "/fail") {
      throw std::runtime_error("out of order");
    }
    if (request.target() == "/strange") {
      throw 1;  // NOLINT(hicpp-exception-baseclass): what a handler should not do
    }
  });
  RawClient client = connect();
  client.send(get("/fail") + get("/strange") + get("/"));

  const std::string failure = client.readAnswer();
  EXPECT_EQ(statusOf(failure), "500");
  EXPECT_THAT(failure, Not(HasSubstr("half an answer")));
  EXPECT_EQ(statusOf(client.readAnswer()), "500");
  EXPECT_EQ(bodyOf(client.readAnswer()), "half an answer");
  m_server.reset();
  EXPECT_THAT(log.records(), test::HasRecord(test::LogLevel::Error, "http::Connection::handle",
                                             HasSubstr("from 127.0.0.1 failed: out of order")));
}

TEST_P(ConnectionTest, TellsTheHandlerWhoAsks) {
  start([](Request& request, Response& response) {
    response.body = request.peerAddress() + (request.isLoopback() ? " loopback" : " remote") +
                    (request.isEncrypted() ? " encrypted" : " plain") + " " +
                    std::string(request.field("cimoperation"));
  });
  RawClient client = connect();
  client.send(get("/", "CIMOperation: MethodCall\r\n"));

  EXPECT_EQ(bodyOf(client.readAnswer()), std::string("127.0.0.1 loopback ") +
                                             (GetParam() ? "encrypted" : "plain") + " MethodCall");
}

TEST_P(ConnectionTest, GivesTheHandlerTheBodyToChange) {
  start([](Request& request, Response& response) {
    request.body().append("!");
    response.body.swap(request.body());
  });
  RawClient client = connect();
  client.send(post("1") + post("2"));

  EXPECT_EQ(bodyOf(client.readAnswer()), "1!");
  EXPECT_EQ(bodyOf(client.readAnswer()), "2!");
}

TEST_P(ConnectionTest, SendsLargeAnswersToWhoReadsSlowly) {
  std::string large;
  for (int i = 0; large.size() < 6 * 1024 * 1024; ++i) {
    large += std::to_string(i) + ",";
  }
  start([&](Request& /*request*/, Response& response) { response.body = large; });
  RawClient client = connect(4096);
  client.send(get("/"));

  EXPECT_TRUE(bodyOf(client.readAnswer()) == large);
  client.send(get("/", "Connection: close\r\n"));
  EXPECT_TRUE(bodyOf(client.readToEnd()) == large);
}

TEST_P(ConnectionTest, DropsWhoDoesNotReadTheAnswer) {
  m_options.requestTimeout = 500ms;
  m_options.maxConnections = 1;
  std::atomic<int> handled{0};
  start([&](Request& /*request*/, Response& response) {
    response.body.assign(32 * 1024 * 1024, 'x');
    ++handled;
  });
  RawClient lazy = connect(4096);
  lazy.send(get("/"));
  ASSERT_TRUE(test::waitUntil([&] { return handled == 1; }));

  // Its place gets free.
  EXPECT_TRUE(test::waitUntil([&] {
    try {
      RawClient client = connect();
      return client.send("HEAD / HTTP/1.1\r\nHost: a\r\n\r\n") &&
             statusOf(client.readHead()) == "200";
    } catch (const std::runtime_error&) {
      return false;  // the TLS handshake of one that is too many
    }
  }));
  EXPECT_LT(lazy.readToEnd().size(), 32U * 1024 * 1024);
}

TEST_P(ConnectionTest, EndsARequestWhoseHeaderComesTooSlowly) {
  m_options.requestTimeout = 500ms;
  const auto begin = Clock::now();

  const std::string answer = exchange("POST / HTTP/1.1\r\nHo");

  EXPECT_GE(Clock::now() - begin, 500ms);
  EXPECT_EQ(statusOf(answer), "408");
  EXPECT_THAT(answer, HasSubstr("500 ms"));
}

TEST_P(ConnectionTest, EndsARequestWhoseBodyComesTooSlowly) {
  m_options.requestTimeout = 500ms;
  RawClient client = connect();
  client.send(post(std::string(1000, 'x')).substr(0, 100));
  // Each byte is in time; the whole is not.
  const auto begin = Clock::now();
  std::ignore = test::waitUntil([&] {
    client.send("x");
    return Clock::now() - begin > 600ms;
  });

  EXPECT_EQ(statusOf(client.readToEnd()), "408");
  EXPECT_FALSE(client.wasReset());
}

TEST_P(ConnectionTest, ClosesAConnectionThatIsIdleForTooLong) {
  m_options.idleTimeout = 200ms;
  RawClient client = connect();
  const auto begin = Clock::now();
  client.send(get("/"));
  static_cast<void>(client.readAnswer());

  EXPECT_TRUE(client.isAtEnd());
  EXPECT_GE(Clock::now() - begin, 200ms);
  EXPECT_FALSE(client.wasReset());
}

TEST_P(ConnectionTest, GivesARequestItsFullTimeBehindAnIdleTime) {
  m_options.idleTimeout = 300ms;
  m_options.requestTimeout = 30s;
  RawClient client = connect();
  const std::string request = post("hello");
  client.send(request.substr(0, 20));
  const auto begin = Clock::now();
  ASSERT_TRUE(test::waitUntil([&] { return Clock::now() - begin > 500ms; }));
  client.send(request.substr(20));

  EXPECT_EQ(bodyOf(client.readAnswer()), "hello");
}

TEST_P(ConnectionTest, HoldsAnAnswerBackAsLongAsTheHandlerSays) {
  start([](Request& request, Response& response) {
    response.delay = request.target() == "/slow" ? 200ms : 0ms;
  });
  RawClient client = connect();
  const auto begin = Clock::now();
  client.send(get("/slow"));

  EXPECT_EQ(statusOf(client.readAnswer()), "200");
  EXPECT_GE(Clock::now() - begin, 200ms);
  client.send(get("/"));
  EXPECT_EQ(statusOf(client.readAnswer()), "200");
}

TEST_P(ConnectionTest, HoldsNoThreadForAnAnswerThatWaits) {
  m_options.threads = 1;
  start([](Request& request, Response& response) {
    response.delay = request.target() == "/slow" ? 60s : 0ms;
  });
  RawClient slow = connect();
  slow.send(get("/slow"));
  RawClient client = connect();
  client.send(get("/"));

  EXPECT_EQ(statusOf(client.readAnswer()), "200");
}

TEST_P(ConnectionTest, SurvivesClientsThatAreGoneBeforeTheAnswer) {
  std::atomic<int> handled{0};
  start([&](Request& /*request*/, Response& response) {
    response.body.assign(1024 * 1024, 'x');
    ++handled;
  });
  for (int i = 0; i < 20; ++i) {
    RawClient client = connect();
    client.send(get("/"));
    client.reset();
  }
  RawClient client = connect();
  client.send(get("/"));

  EXPECT_EQ(bodyOf(client.readAnswer()).size(), 1024U * 1024);
}

// The time is that of the whole header: another byte is no reason to wait as long again. Only a
// client without TLS can look whether there is an answer.
TEST(PlainConnection, EndsARequestWhoseHeaderComesByteByByte) {
  http::ServerOptions options = test::onFreePort(false);
  options.requestTimeout = 500ms;
  const test::TestServer server(options, &test::echo);
  RawClient client(server.port());
  client.send("GET / HTTP/1.1\r\nX: ");
  EXPECT_TRUE(test::waitUntil([&client] {
    client.send("x");
    return client.isReadable();
  }));

  EXPECT_EQ(statusOf(client.readToEnd()), "408");
}

}  // namespace
