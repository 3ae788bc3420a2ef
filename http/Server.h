// An HTTP/1.1 server with TLS, keep-alive, limits and time limits. It knows nothing of CIM.

#ifndef ORVEX_HTTP_SERVER_H_
#define ORVEX_HTTP_SERVER_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace http {

// A request that has been read whole. The views are valid while it is handled.
class Request {
 public:
  Request() = default;
  Request(const Request&) = delete;
  Request& operator=(const Request&) = delete;
  virtual ~Request() = default;

  [[nodiscard]] virtual std::string_view method() const = 0;  // "POST"
  [[nodiscard]] virtual std::string_view target() const = 0;  // "/cimom"
  // Returns the value of a header field, without regard to the case of its name; empty for none.
  [[nodiscard]] virtual std::string_view field(std::string_view name) const = 0;
  // The body, the handler's to change.
  [[nodiscard]] virtual std::string& body() = 0;
  [[nodiscard]] virtual const std::string& peerAddress() const = 0;  // "192.0.2.7"
  [[nodiscard]] virtual bool isLoopback() const = 0;                 // the peer's address
  [[nodiscard]] virtual bool isEncrypted() const = 0;
};

// The answer: what was in it before is gone when the handler gets it, its memory is kept.
struct Response {
  unsigned status = 200;
  std::string fields;  // further header fields, each "Name: value\r\n"
  std::string contentType;
  std::string body;
  // Wait before the answer is sent: what a guesser of passwords gets.
  std::chrono::milliseconds delay{0};
  bool isLast = false;  // close the connection behind it
};

class Handler {
 public:
  Handler() = default;
  Handler(const Handler&) = delete;
  Handler& operator=(const Handler&) = delete;
  virtual ~Handler() = default;

  // Called on the server's threads, at the same time for several connections. What it throws is
  // answered by 500 and logged.
  virtual void handle(Request& request, Response& response) = 0;
};

struct Endpoint {
  std::string address;  // "127.0.0.1", "::1", "0.0.0.0"
  std::uint16_t port = 0;
  bool isTls = false;

  // Returns "127.0.0.1:5988", "[::1]:5988".
  [[nodiscard]] std::string text() const;
};

struct ServerOptions {
  std::vector<Endpoint> endpoints;
  std::string certificateFile;  // PEM, with its chain; for TLS endpoints
  std::string keyFile;          // PEM
  unsigned threads = 2;
  std::size_t maxConnections = 128;
  std::size_t maxHeaderBytes = 16 * 1024;
  std::size_t maxBodyBytes = 1024 * 1024;
  // From a request's first byte to its last; also for the client to take 64 KiB of the answer.
  std::chrono::milliseconds requestTimeout{30'000};
  std::chrono::milliseconds idleTimeout{60'000};  // between requests
  std::chrono::milliseconds closingTime{10'000};  // for answers that are under way at the stop
};

// A fault of the configuration: an address, a port, a certificate; what() names it.
class SetupFault final : public std::exception {
 public:
  explicit SetupFault(std::string text) : m_text(std::move(text)) {}
  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }

 private:
  std::string m_text;
};

class Server {
 public:
  // Listens at once; serves from run() on. The handler is the caller's and outlives the server.
  // Throws SetupFault.
  Server(ServerOptions options, Handler& handler);
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server();

  // Returns where it listens, with the ports that the system chose for port 0.
  [[nodiscard]] std::vector<Endpoint> endpoints() const;

  // Serves, on this thread and further ones, until stop() was called and the answers under way are
  // sent, or the closing time is over. A handler that does not return holds it up beyond that.
  // Once.
  void run();

  // Takes no new connection and no new request from now on; answers that wait are sent at once. Any
  // thread, any time, as often as one likes; not in a signal's handler.
  void stop();

 private:
  struct Implementation;
  std::unique_ptr<Implementation> m_implementation;
};

}  // namespace http

#endif  // ORVEX_HTTP_SERVER_H_
