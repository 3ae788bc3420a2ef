// A server that runs as long as the object, and whose handler is a function of the test.

#ifndef ORVEX_TESTS_HTTP_TESTSERVER_H_
#define ORVEX_TESTS_HTTP_TESTSERVER_H_

#include <atomic>
#include <cstdint>
#include <functional>
#include <thread>
#include <utility>

#include "http/Server.h"
#include "tests/http/Certificates.h"
#include "tests/http/RawClient.h"

namespace test {

class FunctionHandler final : public http::Handler {
 public:
  using Function = std::function<void(http::Request& request, http::Response& response)>;

  // What handles heads: by itself, each request is handled whole.
  using HeadFunction = std::function<bool(http::Request& request, http::Response& response)>;

  explicit FunctionHandler(Function function, HeadFunction headFunction = {})
      : m_function(std::move(function)), m_headFunction(std::move(headFunction)) {}
  [[nodiscard]] bool handleHead(http::Request& request, http::Response& response) override {
    return m_headFunction == nullptr || m_headFunction(request, response);
  }
  void handle(http::Request& request, http::Response& response) override {
    m_function(request, response);
  }

 private:
  const Function m_function;
  const HeadFunction m_headFunction;
};

// Answers with the request's body, or with method and target where there is none.
inline void echo(http::Request& request, http::Response& response) {
  response.contentType = "text/plain";
  response.body = request.body();
  if (response.body.empty()) {
    response.body.append(request.method()).append(" ").append(request.target());
  }
}

// Options for one endpoint on a port that is free.
inline http::ServerOptions onFreePort(bool isTls = false, const char* address = "127.0.0.1") {
  http::ServerOptions options;
  options.endpoints = {{address, 0, isTls}};
  if (isTls) {
    options.certificateFile = sharedCertificates().certificateFile();
    options.keyFile = sharedCertificates().keyFile();
  }
  return options;
}

class TestServer {
 public:
  explicit TestServer(const http::ServerOptions& options = onFreePort(),
                      FunctionHandler::Function function = &echo,
                      FunctionHandler::HeadFunction headFunction = {})
      : m_handler(std::move(function), std::move(headFunction)),
        m_server(options, m_handler),
        m_thread([this] {
          m_server.run();
          m_hasEnded = true;
        }) {}
  TestServer(const TestServer&) = delete;
  TestServer& operator=(const TestServer&) = delete;
  ~TestServer() { end(); }

  [[nodiscard]] std::uint16_t port(std::size_t endpoint = 0) const {
    return m_server.endpoints()[endpoint].port;
  }
  void stop() { m_server.stop(); }
  [[nodiscard]] bool hasEnded() const { return m_hasEnded; }
  // Waits until the server has ended by itself.
  void join() { m_thread.join(); }
  void end() {
    m_server.stop();
    if (m_thread.joinable()) {
      m_thread.join();
    }
  }

 private:
  FunctionHandler m_handler;
  http::Server m_server;
  std::atomic<bool> m_hasEnded{false};
  std::thread m_thread;
};

}  // namespace test

#endif  // ORVEX_TESTS_HTTP_TESTSERVER_H_
