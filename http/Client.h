// An HTTP/1.1 client for one server, with TLS and keep-alive. One thread at a time.

#ifndef ORVEX_HTTP_CLIENT_H_
#define ORVEX_HTTP_CLIENT_H_

#include <chrono>
#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace http {

struct ClientOptions {
  std::string host;  // name or address
  std::uint16_t port = 0;
  bool isTls = false;
  std::string caFile;                         // PEM; empty: what the system trusts
  std::chrono::milliseconds timeout{60'000};  // for connecting, and for each answer
  // What is sent is for this machine only: nothing is where the connection leads to another one.
  bool mustBeLoopback = false;
};

struct ClientResponse {
  unsigned status = 0;
  std::map<std::string, std::string> fields;  // names in lower case
  std::string body;
};

// The server cannot be reached, is not who it should be, or does not speak HTTP: what() says what
// happened, with whom, and what to do.
class ClientFault final : public std::exception {
 public:
  enum class Kind {
    Connection,  // it may go well another time, or when the server runs
    Usage,       // it will not, before an address, a name, a port or a certificate is changed
  };

  // `isSent` says whether a request, or a part of it, is on its way to the server.
  explicit ClientFault(std::string text, Kind kind = Kind::Connection, bool isSent = false)
      : m_text(std::move(text)), m_kind(kind), m_isSent(isSent) {}
  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }
  [[nodiscard]] Kind kind() const { return m_kind; }
  // Returns whether the server may have done what it was asked, although it did not say so.
  [[nodiscard]] bool mayBeDone() const { return m_isSent; }

 private:
  std::string m_text;
  Kind m_kind;
  bool m_isSent;
};

// How one request is sent.
struct SendOptions {
  // To do it twice comes to the same as once. GET, HEAD and OPTIONS are so in any case.
  bool isRepeatable = false;
  // For connecting, and for the answer; zero: that of the client.
  std::chrono::milliseconds timeout{0};
};

class Client {
 public:
  using Fields = std::vector<std::pair<std::string, std::string>>;

  explicit Client(ClientOptions options);
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;
  ~Client();

  // Sends a request and waits for its answer: at most 64 MiB. A kept connection that the server has
  // closed meanwhile is opened anew. Where it ends while the request is on its way, and nothing of
  // the answer has come, a repeatable request is sent anew, once; what became of another one is
  // not known (RFC 9110, 9.2.2), which is a fault. The system's search for the address of a name
  // cannot be cut short: it may take longer than the timeout. Throws ClientFault.
  [[nodiscard]] ClientResponse send(const std::string& method, const std::string& target,
                                    const Fields& fields, const std::string& body,
                                    const SendOptions& options = {});

 private:
  struct Implementation;
  std::unique_ptr<Implementation> m_implementation;
};

}  // namespace http

#endif  // ORVEX_HTTP_CLIENT_H_
