// What tests of the client share: its options, its faults, and a server that does what a test says.

#ifndef ORVEX_TESTS_HTTP_CLIENTFIXTURE_H_
#define ORVEX_TESTS_HTTP_CLIENTFIXTURE_H_

#include <atomic>
#include <cstdint>
#include <functional>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <utility>

#include "http/Client.h"
#include "tests/http/Certificates.h"

namespace test {

inline http::ClientOptions toPort(std::uint16_t port, bool isTls = false) {
  http::ClientOptions options;
  options.host = "127.0.0.1";
  options.port = port;
  options.isTls = isTls;
  options.caFile = isTls ? sharedCertificates().authorityFile() : "";
  return options;
}

inline void expectFault(http::Client& client, http::ClientFault::Kind kind,
                        const testing::Matcher<std::string>& text) {
  try {
    static_cast<void>(client.send("GET", "/", {}, ""));
    ADD_FAILURE() << "answered";
  } catch (const http::ClientFault& fault) {
    EXPECT_THAT(fault.what(), text);
    EXPECT_EQ(fault.kind(), kind);
  }
}

// A server that does to each connection, one after the other, what the test says.
class ScriptedServer {
 public:
  using Script = std::function<void(int connection, int number)>;

  explicit ScriptedServer(Script script) : m_listener(socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    EXPECT_EQ(bind(m_listener, reinterpret_cast<sockaddr*>(&address), size), 0);
    EXPECT_EQ(listen(m_listener, 8), 0);
    getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size);
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this, script = std::move(script)] {
      for (int number = 0;; ++number) {
        const int connection = accept(m_listener, nullptr, nullptr);
        if (connection < 0) {
          return;
        }
        ++m_connections;
        script(connection, number);
        close(connection);
      }
    });
  }
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;
  ~ScriptedServer() {
    shutdown(m_listener, SHUT_RDWR);
    m_thread.join();
    close(m_listener);
  }

  [[nodiscard]] std::uint16_t port() const { return m_port; }
  [[nodiscard]] int countConnections() const { return m_connections; }

  // Reads a request without a body; false where the client is gone.
  static bool readRequest(int connection) {
    std::string request;
    char byte = 0;
    while (request.find("\r\n\r\n") == std::string::npos) {
      if (recv(connection, &byte, 1, 0) != 1) {
        return false;
      }
      request.push_back(byte);
    }
    return true;
  }
  static void write(int connection, const std::string& bytes) {
    static_cast<void>(::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL));
  }

 private:
  int m_listener;
  std::uint16_t m_port = 0;
  std::atomic<int> m_connections{0};
  std::thread m_thread;
};

}  // namespace test

#endif  // ORVEX_TESTS_HTTP_CLIENTFIXTURE_H_
