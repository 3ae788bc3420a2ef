// What answers hold that clients do not take, or take slowly.

#include <atomic>
#include <gmock/gmock.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/http/TestServer.h"
#include "tests/support/LogCapture.h"
#include "tests/support/WaitUntil.h"

namespace {

using namespace std::chrono_literals;
using http::Request;
using http::Response;
using test::bodyOf;
using test::RawClient;
using test::statusOf;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

constexpr std::size_t kLarge = 2 * 1024 * 1024;
constexpr const char* kGetLarge = "GET /large HTTP/1.1\r\nHost: a\r\n\r\n";
constexpr const char* kGetSmall = "GET / HTTP/1.1\r\nHost: a\r\n\r\n";

// A server with room for two large answers.
class LargeAnswersTest : public testing::Test {
 protected:
  LargeAnswersTest() { m_options.maxAnswerBytes = 2 * kLarge + 1024; }

  void start() {
    m_server.emplace(m_options, [this](Request& request, Response& response) {
      response.body = request.target() == "/large" ? std::string(kLarge, 'x') : "small";
      ++m_handled;
    });
  }
  // Has a client ask for an answer that it does not take for now.
  void addLazy() {
    RawClient::Options lazy;
    lazy.isTls = m_isTls;
    lazy.receiveBuffer = 4096;
    m_lazy.push_back(std::make_unique<RawClient>(m_server->port(), lazy));
    const int handled = m_handled;
    m_lazy.back()->send(kGetLarge);
    ASSERT_TRUE(test::waitUntil([&] { return m_handled > handled; }));
    // The share is taken between the handler and the head.
    EXPECT_THAT(m_lazy.back()->readHead(), StartsWith("HTTP/1.1 200"));
  }
  [[nodiscard]] std::string ask(const char* request) const {
    RawClient::Options options;
    options.isTls = m_isTls;
    RawClient client(m_server->port(), options);
    client.send(request);
    return client.readAnswer();
  }
  [[nodiscard]] bool isLargeServedAgain() const {
    return test::waitUntil([this] { return statusOf(ask(kGetLarge)) == "200"; });
  }

  http::ServerOptions m_options = test::onFreePort();
  bool m_isTls = false;
  std::atomic<int> m_handled{0};
  std::optional<test::TestServer> m_server;
  std::vector<std::unique_ptr<RawClient>> m_lazy;
};

TEST_F(LargeAnswersTest, AreRefusedWhereThoseUnderWayLeaveNoRoom) {
  start();
  addLazy();
  addLazy();

  const std::string refusal = ask(kGetLarge);
  EXPECT_THAT(refusal, AllOf(StartsWith("HTTP/1.1 503"), HasSubstr("\r\nRetry-After: "),
                             HasSubstr(std::to_string(m_options.maxAnswerBytes) + " bytes")));
  EXPECT_EQ(bodyOf(ask(kGetSmall)), "small");
}

TEST_F(LargeAnswersTest, AreServedAgainWhenThoseUnderWayAreTaken) {
  start();
  addLazy();
  addLazy();
  ASSERT_EQ(statusOf(ask(kGetLarge)), "503");

  EXPECT_EQ(m_lazy.front()->readBytes(kLarge).size(), kLarge);
  EXPECT_TRUE(isLargeServedAgain());
  EXPECT_EQ(m_lazy.back()->readBytes(kLarge).size(), kLarge);
}

TEST_F(LargeAnswersTest, AreServedAgainWhenThoseUnderWayAreGivenUp) {
  start();
  addLazy();
  addLazy();
  ASSERT_EQ(statusOf(ask(kGetLarge)), "503");

  m_lazy.front()->reset();
  EXPECT_TRUE(isLargeServedAgain());
}

TEST_F(LargeAnswersTest, GiveWayToOthersWhereTheyAreTakenSlowly) {
  m_options.slowAnswerTime = 0ms;
  start();
  addLazy();
  addLazy();

  EXPECT_TRUE(isLargeServedAgain());
  EXPECT_LT(m_lazy.front()->readToEnd().size(), kLarge);
}

TEST_F(LargeAnswersTest, EndWhereTheyAreNotTakenInTime) {
  m_options.requestTimeout = 300ms;
  start();
  addLazy();
  addLazy();

  EXPECT_TRUE(isLargeServedAgain());
}

TEST_F(LargeAnswersTest, GoOutAloneWhereTheyAreLargerThanTheRoom) {
  m_options.maxAnswerBytes = 1024;
  start();
  addLazy();
  EXPECT_EQ(statusOf(ask(kGetLarge)), "503");
  EXPECT_EQ(m_lazy.front()->readBytes(kLarge).size(), kLarge);
}

TEST_F(LargeAnswersTest, LeaveNoMemoryToSmallOnesThatWouldCount) {
  m_server.emplace(m_options, [this](Request& request, Response& response) {
    response.body.reserve(kLarge);
    response.body = "small";
    m_handled += request.target() == "/large" ? 1 : 0;
    if (request.target() == "/large") {
      response.body.assign(kLarge, 'x');
    }
  });
  addLazy();
  addLazy();

  EXPECT_EQ(bodyOf(ask(kGetSmall)), "small");
}

// Whoever writes them must not wait for their clients.
TEST_F(LargeAnswersTest, HoldNoThreadWhileNobodyTakesThem) {
  m_options.threads = 1;
  for (const bool isTls : {false, true}) {
    m_options.endpoints = test::onFreePort(isTls).endpoints;
    m_options.certificateFile = test::onFreePort(true).certificateFile;
    m_options.keyFile = test::onFreePort(true).keyFile;
    m_isTls = isTls;
    start();
    addLazy();
    addLazy();
    EXPECT_EQ(bodyOf(ask(kGetSmall)), "small");
    m_lazy.clear();
    m_server.reset();
  }
}

TEST_F(LargeAnswersTest, AreLoggedOnceWhereThereIsNoRoom) {
  const test::LogCapture log;
  start();
  addLazy();
  addLazy();
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(statusOf(ask(kGetLarge)), "503");
  }
  m_lazy.clear();
  m_server.reset();
  EXPECT_THAT(log.messages("http::Connection::answer"),
              testing::ElementsAre(StartsWith("The answers under way hold 4194304 of 4195328")));
}

}  // namespace
