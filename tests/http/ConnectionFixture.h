// A server and its clients, plain or encrypted by the test's parameter.

#ifndef ORVEX_TESTS_HTTP_CONNECTIONFIXTURE_H_
#define ORVEX_TESTS_HTTP_CONNECTIONFIXTURE_H_

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>

#include "tests/http/TestServer.h"

namespace test {

class ConnectionFixture : public testing::TestWithParam<bool> {
 protected:
  ConnectionFixture() : m_options(onFreePort(GetParam())) {}

  // Starts the server with what was set before.
  void start(FunctionHandler::Function function = &echo,
             FunctionHandler::HeadFunction headFunction = {}) {
    m_server.emplace(m_options, std::move(function), std::move(headFunction));
  }
  [[nodiscard]] RawClient connect(int receiveBuffer = 0) {
    if (!m_server) {
      start();
    }
    RawClient::Options options;
    options.isTls = GetParam();
    options.receiveBuffer = receiveBuffer;
    return RawClient(m_server->port(), options);
  }
  // Sends bytes on a connection of their own and returns all that comes back.
  [[nodiscard]] std::string exchange(const std::string& bytes) {
    RawClient client = connect();
    client.send(bytes);
    std::string answer = client.readToEnd();
    EXPECT_FALSE(client.wasReset());
    return answer;
  }

  http::ServerOptions m_options;
  std::optional<TestServer> m_server;
};

inline std::string get(const std::string& target, const std::string& fields = {}) {
  return "GET " + target + " HTTP/1.1\r\nHost: a\r\n" + fields + "\r\n";
}

inline std::string post(const std::string& body, const std::string& fields = {}) {
  return "POST / HTTP/1.1\r\nHost: a\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" +
         fields + "\r\n" + body;
}

}  // namespace test

#endif  // ORVEX_TESTS_HTTP_CONNECTIONFIXTURE_H_
