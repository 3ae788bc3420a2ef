// A client that sends bytes as a test gives them, over plain TCP or TLS, and looks at what comes
// back. It waits 30 s at most for anything.

#ifndef ORVEX_TESTS_HTTP_RAWCLIENT_H_
#define ORVEX_TESTS_HTTP_RAWCLIENT_H_

#include <cstddef>
#include <cstdint>
#include <openssl/ssl.h>
#include <string>
#include <string_view>

namespace test {

class RawClient {
 public:
  struct Options {
    std::string address = "127.0.0.1";
    bool isTls = false;
    int tlsVersion = 0;     // the only one it speaks; 0 for any
    int receiveBuffer = 0;  // bytes that the system takes for it; 0 for the system's choice
  };

  // Throw std::runtime_error where there is no connection.
  explicit RawClient(std::uint16_t port) : RawClient(port, Options{}) {}
  RawClient(std::uint16_t port, const Options& options);
  RawClient(const RawClient&) = delete;
  RawClient& operator=(const RawClient&) = delete;
  ~RawClient();

  // Returns false when the server takes no more.
  bool send(std::string_view bytes);
  // Ends the client's half of the connection.
  void endSending();
  // Ends it in the hard way.
  void reset();

  // Returns the next answer, head and body, as its Content-Length says; what has come of it, if the
  // connection ends before.
  [[nodiscard]] std::string readAnswer();
  // Returns the next answer's head: all there is of the answer to a HEAD.
  [[nodiscard]] std::string readHead();
  // Returns what comes until the connection ends.
  [[nodiscard]] std::string readToEnd();
  [[nodiscard]] std::string readBytes(std::size_t count);
  // Returns whether a read would end at once: by bytes, or by the end. Without TLS alone.
  [[nodiscard]] bool isReadable() const;
  // Returns whether the connection ends without anything further to read.
  [[nodiscard]] bool isAtEnd() { return readToEnd().empty(); }
  // Whether it ended by a reset, which may have cost an answer.
  [[nodiscard]] bool wasReset() const { return m_wasReset; }
  [[nodiscard]] int tlsVersion() const { return SSL_version(m_session); }

 private:
  bool readMore();

  int m_socket = -1;
  SSL_CTX* m_settings = nullptr;
  SSL* m_session = nullptr;
  bool m_wasReset = false;
  std::string m_received;
};

// "400" of "HTTP/1.1 400 Bad Request...".
[[nodiscard]] std::string statusOf(const std::string& answer);
[[nodiscard]] std::string bodyOf(const std::string& answer);

}  // namespace test

#endif  // ORVEX_TESTS_HTTP_RAWCLIENT_H_
