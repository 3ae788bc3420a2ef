#include <atomic>
#include <cstdint>
#include <future>
#include <gmock/gmock.h>
#include <string>
#include <thread>
#include <vector>

#include "daemon/Authentication.h"
#include "daemon/CimXmlHandler.h"
#include "tests/daemon/FakeHttpRequest.h"
#include "tests/support/WaitUntil.h"

namespace {

using testing::HasSubstr;

const std::string kAnna = "Basic YW5uYTpzZWNyZXQ=";  // anna:secret
const std::string kBert = "Basic YmVydDpzZWNyZXQ=";  // bert:secret

class FakeService final : public quorveld::CimXmlHandler::Service {
 public:
  void answer(const cimxml::Request& request, const wbem::Caller& caller,
              std::string& out) override {
    ++answers;
    out += request.name + " by '" + caller.user + "' from " + caller.address +
           (caller.role == wbem::Role::Operator ? ", operator" : ", reader");
  }
  [[nodiscard]] unsigned countRunningJobs() override { return 3; }

  unsigned answers = 0;
};

class Anna final : public quorveld::Authenticator {
 public:
  [[nodiscard]] std::optional<wbem::Role> check(const std::string& user,
                                                const std::string& password,
                                                const std::string& /*address*/) override {
    return user == "anna" && password == "secret" ? std::optional(wbem::Role::Reader)
                                                  : std::nullopt;
  }
};

// Lets everybody read who gives a name.
class AnyUser final : public quorveld::Authenticator {
 public:
  [[nodiscard]] std::optional<wbem::Role> check(const std::string& /*user*/,
                                                const std::string& /*password*/,
                                                const std::string& /*address*/) override {
    return wbem::Role::Reader;
  }
};

// Answers nobody until the test says so.
class HeldUp final : public quorveld::Authenticator {
 public:
  [[nodiscard]] std::optional<wbem::Role> check(const std::string& /*user*/,
                                                const std::string& /*password*/,
                                                const std::string& /*address*/) override {
    m_released.wait();
    return std::nullopt;
  }
  void release() { m_release.set_value(); }

 private:
  std::promise<void> m_release;
  const std::shared_future<void> m_released{m_release.get_future()};
};

// Cannot tell for now who anybody is.
class Unsure final : public quorveld::Authenticator {
 public:
  [[nodiscard]] bool demandsLogin() const override { return false; }
  [[nodiscard]] Admission admit(std::optional<std::uint32_t> /*peer*/) override {
    return {std::nullopt, true};
  }
  [[nodiscard]] std::optional<wbem::Role> check(const std::string& /*user*/,
                                                const std::string& /*password*/,
                                                const std::string& /*address*/) override {
    return std::nullopt;
  }
};

class NoAudit final : public wbem::Audit {
 public:
  void write(const wbem::AuditRecord& /*record*/) noexcept override {}
};

class CimXmlHandlerTest : public testing::Test {
 protected:
  http::Response ask(quorveld::Authenticator& authenticator) {
    quorveld::LoginGate gate(authenticator, m_audit);
    quorveld::CimXmlHandler handler(m_service, gate, "1.2.3");
    http::Response response;
    handle(handler, m_request, response);
    return response;
  }
  http::Response ask() { return ask(m_nobody); }
  // As an HTTP server has it handled.
  static void handle(quorveld::CimXmlHandler& handler, http::Request& request,
                     http::Response& response) {
    if (handler.handleHead(request, response)) {
      handler.handle(request, response);
    }
  }

  // Asks with a method and target and expects a status, with the Allow field where one is due.
  void expectStatus(const std::string& method, const std::string& target, unsigned status,
                    const std::string& fields) {
    m_request.httpMethod = method;
    m_request.httpTarget = target;
    const http::Response response = ask();
    EXPECT_EQ(response.status, status) << method << ' ' << target;
    EXPECT_EQ(response.fields, fields) << method << ' ' << target;
  }

  // Expects a message to be refused before anything answers it.
  void expectRefused(unsigned status, const std::string& fields) {
    const http::Response response = ask();
    EXPECT_EQ(response.status, status);
    EXPECT_EQ(response.fields, fields);
    EXPECT_EQ(response.contentType, "text/plain; charset=utf-8");
    EXPECT_NE(response.body, "");
    EXPECT_EQ(m_service.answers, 0u);
  }

  FakeService m_service;
  NoAudit m_audit;
  quorveld::NoAuthenticator m_nobody;
  Anna m_anna;
  AnyUser m_anyUser;
  test::FakeHttpRequest m_request;
};

TEST_F(CimXmlHandlerTest, AnswersAMessage) {
  for (const char* const target : {"/", "/cimom", "/anything?x=y"}) {
    m_request.content = test::FakeHttpRequest().content;
    m_request.httpTarget = target;
    const http::Response response = ask();
    EXPECT_EQ(response.status, 200u);
    EXPECT_EQ(response.contentType, "application/xml; charset=utf-8");
    EXPECT_EQ(response.fields, "CIMOperation: MethodResponse\r\n");
    EXPECT_EQ(response.body, "EnumerateInstances by '' from 127.0.0.1, operator");
  }
}

TEST_F(CimXmlHandlerTest, TellsMonitorsHowItDoesWithoutALogin) {
  m_request.httpMethod = "GET";
  m_request.httpTarget = "/health";
  const http::Response response = ask(m_anna);
  EXPECT_EQ(response.status, 200u);
  EXPECT_EQ(response.contentType, "application/json");
  EXPECT_EQ(response.body, R"({"version": "1.2.3", "uptime": 0, "runningJobs": 3})"
                           "\n");
}

// Holds every message, and the count of jobs, until the test lets them go.
class HeldService final : public quorveld::CimXmlHandler::Service {
 public:
  void answer(const cimxml::Request& /*request*/, const wbem::Caller& /*caller*/,
              std::string& /*out*/) override {
    ++answering;
    m_released.wait();
  }
  [[nodiscard]] unsigned countRunningJobs() override {
    m_released.wait();
    return 3;
  }
  void release() { m_release.set_value(); }

  std::atomic<unsigned> answering{0};

 private:
  std::promise<void> m_release;
  const std::shared_future<void> m_released{m_release.get_future()};
};

TEST_F(CimXmlHandlerTest, AnswersMonitorsAndTurnsMessagesAwayWhereTooManyWaitForTheirTurn) {
  HeldService service;
  quorveld::LoginGate gate(m_nobody, m_audit);
  quorveld::CimXmlHandler handler(service, gate, "1.2.3");
  std::vector<std::thread> clients;
  for (unsigned i = 0; i < quorveld::AnswerPlaces::kMost; ++i) {
    clients.emplace_back([&handler, i] {
      test::FakeHttpRequest request;
      request.group = "192.0.2." + std::to_string(i);
      http::Response response;
      handle(handler, request, response);
      EXPECT_EQ(response.status, 200u);
    });
  }
  EXPECT_TRUE(test::waitUntil([&] { return service.answering == quorveld::AnswerPlaces::kMost; }));

  http::Response refused;
  handle(handler, m_request, refused);
  EXPECT_EQ(refused.status, 503u);
  EXPECT_EQ(refused.fields, "Retry-After: 1\r\n");
  EXPECT_THAT(refused.body, HasSubstr("Too many requests wait"));

  test::FakeHttpRequest health;
  health.httpMethod = "GET";
  health.httpTarget = "/health";
  http::Response response;
  handle(handler, health, response);
  EXPECT_EQ(response.status, 200u);
  EXPECT_THAT(response.body, HasSubstr("\"runningJobs\": null}"));

  service.release();
  for (std::thread& client : clients) {
    client.join();
  }
  m_request.content = test::FakeHttpRequest().content;
  http::Response answered;
  handle(handler, m_request, answered);
  EXPECT_EQ(answered.status, 200u);
}

// A user who may but read keeps neither root nor an operator out.
TEST_F(CimXmlHandlerTest, AnswersOthersWhileOneUserSendsAllThatHeCan) {
  HeldService service;
  quorveld::LoginGate gate(m_nobody, m_audit);
  quorveld::CimXmlHandler handler(service, gate, "1.2.3", {0});
  std::vector<std::thread> clients;
  std::atomic<unsigned> refused{0};
  const auto send = [&](std::uint32_t user, unsigned count) {
    for (unsigned i = 0; i < count; ++i) {
      clients.emplace_back([&handler, &refused, user] {
        test::FakeHttpRequest request;
        request.user = user;
        request.group = "user " + std::to_string(user);
        http::Response response;
        handle(handler, request, response);
        refused += response.status == 503 ? 1 : 0;
      });
    }
  };
  const auto awaitAnswering = [&](unsigned count) {
    EXPECT_TRUE(test::waitUntil([&] { return service.answering == count; })) << service.answering;
  };
  send(1234, 60);
  EXPECT_TRUE(test::waitUntil([&] { return service.answering + refused == 60; }));
  awaitAnswering(16);
  send(1000, 8);
  awaitAnswering(24);
  send(0, 16);
  awaitAnswering(40);
  EXPECT_EQ(refused, 44U);

  service.release();
  for (std::thread& client : clients) {
    client.join();
  }
}

TEST_F(CimXmlHandlerTest, KeepsThoseApartWhoHaveLoggedInFromOneAddress) {
  HeldService service;
  quorveld::LoginGate gate(m_anyUser, m_audit);
  quorveld::CimXmlHandler handler(service, gate, "1.2.3");
  std::vector<std::thread> clients;
  const auto send = [&](const std::string& login) {
    clients.emplace_back([&handler, login] {
      test::FakeHttpRequest request;
      request.fields["Authorization"] = login;
      http::Response response;
      handle(handler, request, response);
      EXPECT_EQ(response.status, 200u);
    });
  };
  for (unsigned i = 0; i < 16; ++i) {
    send(kBert);
    EXPECT_TRUE(test::waitUntil([&] { return service.answering == i + 1; }));
  }
  send(kAnna);
  EXPECT_TRUE(test::waitUntil([&] { return service.answering == 17; }));
  service.release();
  for (std::thread& client : clients) {
    client.join();
  }
}

TEST_F(CimXmlHandlerTest, OffersWhatItsTableSays) {
  const std::string messages = "Allow: OPTIONS, POST\r\n";
  const std::string health = "Allow: GET, HEAD, OPTIONS\r\n";
  expectStatus("HEAD", "/health", 200, "");
  expectStatus("GET", "/health?from=monitor", 200, "");
  expectStatus("OPTIONS", "/health", 200, health);
  expectStatus("OPTIONS", "*", 200, messages);
  expectStatus("GET", "/", 405, messages);
  expectStatus("HEAD", "/cimom", 405, messages);
  expectStatus("DELETE", "/", 405, messages);
  expectStatus("POST", "/health", 405, health);
  expectStatus("M-POST", "/cimom", 501, "");
  expectStatus("BREW", "/", 501, "");
  EXPECT_EQ(m_service.answers, 0u);
}

TEST_F(CimXmlHandlerTest, RefusesWhatIsNoXmlInUtf8) {
  for (const char* const type :
       {"", "text/plain", "application/json", "application/xmlx", "text/xml; charset=iso-8859-1"}) {
    m_request.fields["Content-Type"] = type;
    expectRefused(415, "");
  }
}

TEST_F(CimXmlHandlerTest, RefusesABodyThatIsNoMessage) {
  m_request.content = "<CIM";
  expectRefused(400, "CIMError: request-not-well-formed\r\n");
}

TEST_F(CimXmlHandlerTest, RefusesFieldsThatSaySomethingElseThanTheMessage) {
  m_request.fields["CIMMethod"] = "GetClass";
  expectRefused(400, "CIMError: header-mismatch\r\n");
}

TEST_F(CimXmlHandlerTest, AsksForALogin) {
  const http::Response response = ask(m_anna);
  EXPECT_EQ(response.status, 401u);
  EXPECT_EQ(response.fields, "WWW-Authenticate: Basic realm=\"quorveld\", charset=\"UTF-8\"\r\n");
  EXPECT_EQ(response.delay.count(), 0);
  EXPECT_EQ(m_service.answers, 0u);
}

TEST_F(CimXmlHandlerTest, AsksForALoginBeforeItLooksAtTheMessage) {
  m_request.fields["Content-Type"] = "text/plain";
  m_request.content = "no message";
  EXPECT_EQ(ask(m_anna).status, 401u);
}

TEST_F(CimXmlHandlerTest, WantsTheBodiesOfMessagesAloneThatMayBeSent) {
  quorveld::LoginGate gate(m_anna, m_audit);
  quorveld::CimXmlHandler handler(m_service, gate, "1.2.3");
  const auto wantsBody = [&](const std::string& method, const std::string& target,
                             const std::string& login) {
    m_request.httpMethod = method;
    m_request.httpTarget = target;
    m_request.fields["Authorization"] = login;
    http::Response response;
    return handler.handleHead(m_request, response);
  };
  EXPECT_TRUE(wantsBody("POST", "/cimom", kAnna));
  EXPECT_FALSE(wantsBody("POST", "/cimom", ""));
  EXPECT_FALSE(wantsBody("GET", "/health", kAnna));
  EXPECT_FALSE(wantsBody("POST", "/health", kAnna));
  EXPECT_FALSE(wantsBody("OPTIONS", "*", kAnna));
  EXPECT_FALSE(wantsBody("M-POST", "/cimom", kAnna));
  m_request.fields["Content-Type"] = "text/plain";
  EXPECT_FALSE(wantsBody("POST", "/cimom", kAnna));
  m_request.fields["Content-Type"] = "text/xml";
  EXPECT_TRUE(wantsBody("POST", "/cimom", kAnna));
  EXPECT_FALSE(wantsBody("POST", "/cimom", "Basic YW5uYTp3cm9uZw=="));
}

TEST_F(CimXmlHandlerTest, AnswersWhoHasLoggedIn) {
  m_request.fields["Authorization"] = kAnna;
  EXPECT_EQ(ask(m_anna).body, "EnumerateInstances by 'anna' from 127.0.0.1, reader");
}

TEST_F(CimXmlHandlerTest, DelaysTheAnswerToAWrongLogin) {
  m_request.fields["Authorization"] = "Basic YW5uYTp3cm9uZw==";
  const http::Response response = ask(m_anna);
  EXPECT_EQ(response.status, 401u);
  EXPECT_EQ(response.delay, std::chrono::milliseconds(500));
}

TEST_F(CimXmlHandlerTest, AnswersMonitorsAndTurnsLoginsAwayWhereTheLineOfLoginsIsFull) {
  HeldUp authenticator;
  quorveld::LoginGate gate(authenticator, m_audit);
  quorveld::CimXmlHandler handler(m_service, gate, "1.2.3");
  std::atomic<unsigned> refused{0};
  std::vector<std::thread> clients;
  for (unsigned i = 0; i <= quorveld::LoginGate::kMostInLine; ++i) {
    clients.emplace_back([&] {
      test::FakeHttpRequest request;
      request.fields["Authorization"] = kAnna;
      http::Response response;
      handle(handler, request, response);
      refused += response.status == 503 && response.fields == "Retry-After: 1\r\n" ? 1 : 0;
    });
  }
  EXPECT_TRUE(test::waitUntil([&] { return refused == 1; }));

  m_request.httpMethod = "GET";
  m_request.httpTarget = "/health";
  http::Response response;
  handle(handler, m_request, response);
  EXPECT_EQ(response.status, 200u);

  authenticator.release();
  for (std::thread& client : clients) {
    client.join();
  }
  EXPECT_EQ(refused, 1u);
}

TEST_F(CimXmlHandlerTest, TakesPasswordsFromANetworkOverTlsAlone) {
  m_request.fields["Authorization"] = kAnna;
  m_request.peer = "192.0.2.7";
  const http::Response refused = ask(m_anna);
  EXPECT_EQ(refused.status, 403u);
  EXPECT_THAT(refused.body, HasSubstr("use HTTPS"));
  EXPECT_EQ(m_service.answers, 0u);

  m_request.isTls = true;
  EXPECT_EQ(ask(m_anna).status, 200u);
}

TEST_F(CimXmlHandlerTest, AnswersByALoopbackNameAloneWhereNobodyLogsIn) {
  m_request.fields["Host"] = "evil.example:5988";
  EXPECT_EQ(ask().status, 403u);
  EXPECT_EQ(m_service.answers, 0u);

  m_request.fields["Authorization"] = kAnna;
  EXPECT_EQ(ask(m_anna).status, 200u);
}

TEST_F(CimXmlHandlerTest, TakesNoEmptyHostAndMayDoWithoutAny) {
  for (const char* const host : {"", ":5988"}) {
    m_request.fields["Host"] = host;
    EXPECT_EQ(ask().status, 403u) << host;
  }
  m_request.fields.erase("Host");
  EXPECT_EQ(ask().status, 200u);
}

TEST_F(CimXmlHandlerTest, LooksAtTheServerOfTheTargetToo) {
  for (const char* const server : {"evil.example", "evil.example:5988", "localhost@evil", ""}) {
    m_request.server = server;
    EXPECT_EQ(ask().status, 403u) << server;
  }
  m_request.fields["Authorization"] = kAnna;
  EXPECT_EQ(ask(m_anna).status, 200u);
  m_request.content = test::FakeHttpRequest().content;
  m_request.server = "localhost:5988";
  EXPECT_EQ(ask().status, 200u);
}

TEST_F(CimXmlHandlerTest, TellsMonitorsByALoopbackNameAloneWhereNobodyLogsIn) {
  m_request.httpTarget = "/health";
  m_request.fields["Host"] = "evil.example:5988";
  for (const char* const method : {"GET", "HEAD"}) {
    m_request.httpMethod = method;
    EXPECT_EQ(ask().status, 403u);
    EXPECT_EQ(ask(m_anna).status, 200u);
  }
  m_request.fields["Host"] = "localhost:5988";
  EXPECT_EQ(ask().status, 200u);
}

TEST_F(CimXmlHandlerTest, TellsWhoCannotBeToldForNowToComeAgain) {
  Unsure unsure;
  const http::Response response = ask(unsure);
  EXPECT_EQ(response.status, 503u);
  EXPECT_EQ(response.fields, "Retry-After: 1\r\n");
  EXPECT_THAT(response.body, HasSubstr("directory of users"));
  EXPECT_EQ(m_service.answers, 0u);
}

// Users of this machine who come by the local socket have one address.
TEST_F(CimXmlHandlerTest, CountsFailedLoginsForTheGroupOfThePeer) {
  quorveld::LoginGate gate(m_anna, m_audit);
  quorveld::CimXmlHandler handler(m_service, gate, "1.2.3");
  m_request.peer = "unix";
  m_request.isLocal = true;
  const auto statusOf = [&](const std::string& group, const std::string& login) {
    m_request.group = group;
    m_request.fields["Authorization"] = login;
    m_request.content = test::FakeHttpRequest().content;
    http::Response response;
    handle(handler, m_request, response);
    return response.status;
  };
  EXPECT_EQ(statusOf("user 1000", "Basic !"), 401u);
  EXPECT_EQ(statusOf("user 1000", kAnna), 401u);
  EXPECT_EQ(statusOf("user 1001", kAnna), 200u);
}

TEST_F(CimXmlHandlerTest, RefusesFieldsThatComeTwice) {
  for (const char* const name : {"CIMMethod", "CIMObject"}) {
    m_request.repeated = {name};
    expectRefused(400, "CIMError: header-mismatch\r\n");
  }
}

}  // namespace
