// A request and its answer as a handler sees them.

#ifndef ORVEX_HTTP_MESSAGE_H_
#define ORVEX_HTTP_MESSAGE_H_

#include <any>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "http/Status.h"

namespace http {

// A request. The views are valid while it is handled.
class Request {
 public:
  Request() = default;
  Request(const Request&) = delete;
  Request& operator=(const Request&) = delete;
  virtual ~Request() = default;

  [[nodiscard]] virtual std::string_view method() const = 0;  // "POST"
  [[nodiscard]] virtual std::string_view target() const = 0;  // "/cimom"
  // Returns the server of a target that names it in front of the path, "lab:5988"; nothing where it
  // does not. It counts beside the field Host.
  [[nodiscard]] virtual std::optional<std::string_view> authority() const = 0;
  // Returns the value of a header field, without regard to the case of its name; empty for none.
  [[nodiscard]] virtual std::string_view field(std::string_view name) const = 0;
  // Returns how many header fields have that name: field() is the first of them. There is never
  // more than one Host, Content-Type or Authorization.
  [[nodiscard]] virtual std::size_t countFields(std::string_view name) const = 0;
  // The body, the handler's to change; empty while the head is handled.
  [[nodiscard]] virtual std::string& body() = 0;
  // The handler's own, for what it knows when the head has been handled and wants to have again.
  [[nodiscard]] virtual std::any& memo() = 0;
  [[nodiscard]] virtual const std::string& peerAddress() const = 0;  // "192.0.2.7"
  // What the peer counts as where something is allowed to each: an address as toPeerGroup() has it,
  // or a user of this machine.
  [[nodiscard]] virtual const std::string& peerGroup() const = 0;
  [[nodiscard]] virtual bool isLoopback() const = 0;  // the peer's address
  // The number of the user at the other end, as ServerOptions::findUser found it.
  [[nodiscard]] virtual std::optional<std::uint32_t> peerUser() const = 0;
  [[nodiscard]] virtual bool isEncrypted() const = 0;
};

// The answer, empty when the handler gets it.
struct Response {
  unsigned status = kStatusOk;
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

  // Both are called on the server's threads, at the same time for several connections. What they
  // throw is answered by 500 and logged.

  // Called for each request when its head is there: nothing of its body is kept, waited for or
  // asked for before. Returns whether the request goes on to handle(); otherwise the response is
  // the answer. The body is passed over then where it has come already, and the connection ends
  // otherwise.
  [[nodiscard]] virtual bool handleHead(Request& /*request*/, Response& /*response*/) {
    return true;
  }
  // Called with the whole request.
  virtual void handle(Request& request, Response& response) = 0;
};

}  // namespace http

#endif  // ORVEX_HTTP_MESSAGE_H_
