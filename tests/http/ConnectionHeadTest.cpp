// What becomes of a request whose head says enough, plain and encrypted.

#include <any>
#include <gmock/gmock.h>
#include <stdexcept>
#include <string>

#include "http/Clock.h"
#include "http/Status.h"
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
using testing::StartsWith;

class ConnectionHeadTest : public test::ConnectionFixture {
 protected:
  // Starts one that answers every head by 401 but those for /open.
  void startGuarded() {
    start(&test::echo, [](Request& request, Response& response) {
      response.status = http::kStatusUnauthorized;
      return request.target() == "/open";
    });
  }
};

INSTANTIATE_TEST_SUITE_P(, ConnectionHeadTest, testing::Bool(),
                         [](const auto& tested) { return tested.param ? "Tls" : "Plain"; });

TEST_P(ConnectionHeadTest, AnswersAHeadWithoutItsBody) {
  startGuarded();
  RawClient client = connect();
  client.send("POST / HTTP/1.1\r\nHost: a\r\nContent-Length: 1000000\r\n\r\n");

  const std::string answer = client.readToEnd();
  EXPECT_EQ(statusOf(answer), "401");
  EXPECT_THAT(answer, HasSubstr("\r\nConnection: close\r\n"));
}

TEST_P(ConnectionHeadTest, HearsAClientOutWhoseBodyIsNotWanted) {
  startGuarded();
  RawClient client = connect();
  EXPECT_TRUE(client.send(post(std::string(1000000, 'x'))));

  EXPECT_EQ(statusOf(client.readToEnd()), "401");
  EXPECT_FALSE(client.wasReset());
}

TEST_P(ConnectionHeadTest, DoesNotAskForABodyThatIsNotWanted) {
  startGuarded();

  EXPECT_EQ(statusOf(exchange("POST / HTTP/1.1\r\nHost: a\r\nContent-Length: 5\r\n"
                              "Expect: 100-continue\r\n\r\n")),
            "401");
}

TEST_P(ConnectionHeadTest, StaysOpenWhereABodyThatIsNotWantedHasComeAlready) {
  startGuarded();
  RawClient client = connect();
  client.send(post("GET /hidden HTTP/1.1\r\nHost: a\r\n\r\n"));
  EXPECT_EQ(statusOf(client.readAnswer()), "401");
  client.send(
      "POST / HTTP/1.1\r\nHost: a\r\nTransfer-Encoding: chunked\r\n\r\n"
      "5\r\nhello\r\n0\r\n\r\n");
  EXPECT_EQ(statusOf(client.readAnswer()), "401");
  client.send(get("/open"));

  EXPECT_EQ(bodyOf(client.readAnswer()), "GET /open");
}

TEST_P(ConnectionHeadTest, ClosesBehindABodyThatIsNotWantedAndIsNone) {
  startGuarded();

  EXPECT_EQ(statusOf(exchange("POST / HTTP/1.1\r\nHost: a\r\nTransfer-Encoding: chunked\r\n\r\n"
                              "no chunk\r\n")),
            "401");
}

TEST_P(ConnectionHeadTest, KeepsWhatTheHandlerNotedAtTheHead) {
  start(
      [](Request& request, Response& response) {
        response.body = std::any_cast<std::string>(request.memo()) + request.body();
      },
      [](Request& request, Response& /*response*/) {
        EXPECT_FALSE(request.memo().has_value());
        EXPECT_EQ(request.body(), "");
        request.memo() = "noted of " + std::string(request.target()) + ": ";
        return true;
      });
  RawClient client = connect();
  client.send(post("1") + post("2"));

  EXPECT_EQ(bodyOf(client.readAnswer()), "noted of /: 1");
  EXPECT_EQ(bodyOf(client.readAnswer()), "noted of /: 2");
}

TEST_P(ConnectionHeadTest, AnswersAHandlersFailureAtTheHead) {
  const test::LogCapture log;
  start(&test::echo, [](Request& /*request*/, Response& /*response*/) -> bool {
    throw std::runtime_error("out of order");
  });
  RawClient client = connect();
  client.send(get("/"));

  EXPECT_EQ(statusOf(client.readAnswer()), "500");
}

TEST_P(ConnectionHeadTest, TakesTheHandlersTimeAtTheHeadFromNoBody) {
  m_options.requestTimeout = 1000ms;
  start(&test::echo, [](Request& /*request*/, Response& /*response*/) {
    const auto begin = Clock::now();
    return test::waitUntil([&] { return Clock::now() - begin > 1200ms; });
  });
  RawClient client = connect();
  const std::string request = post("hello", "Expect: 100-continue\r\n");
  client.send(request.substr(0, request.size() - 5));
  EXPECT_THAT(client.readHead(), StartsWith("HTTP/1.1 100"));
  client.send("hello");

  EXPECT_EQ(bodyOf(client.readAnswer()), "hello");
}

}  // namespace
