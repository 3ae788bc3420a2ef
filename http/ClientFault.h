// Why a client has no answer.

#ifndef ORVEX_HTTP_CLIENTFAULT_H_
#define ORVEX_HTTP_CLIENTFAULT_H_

#include <exception>
#include <string>
#include <utility>

namespace http {

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

}  // namespace http

#endif  // ORVEX_HTTP_CLIENTFAULT_H_
