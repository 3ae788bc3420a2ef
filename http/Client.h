// An HTTP/1.1 client for one server, with TLS and keep-alive. One thread at a time.

#ifndef ORVEX_HTTP_CLIENT_H_
#define ORVEX_HTTP_CLIENT_H_

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "http/ClientFault.h"
#include "http/ClientResponse.h"

namespace http {

struct ClientOptions {
  std::string host;  // name or address
  std::uint16_t port = 0;
  std::string path = {};  // of a local socket, in the place of host and port
  bool isTls = false;
  std::string caFile = {};                    // PEM; empty: what the system trusts
  std::chrono::milliseconds timeout{60'000};  // for connecting, and for each answer
  // What is sent is for this machine only: nothing is where the connection leads to another one.
  bool mustBeLoopback = false;
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
