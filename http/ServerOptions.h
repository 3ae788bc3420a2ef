// What a server is told at its construction, and the fault that says which of that cannot be.

#ifndef ORVEX_HTTP_SERVEROPTIONS_H_
#define ORVEX_HTTP_SERVEROPTIONS_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "http/Endpoint.h"

namespace http {

struct ServerOptions {
  std::vector<Endpoint> endpoints;
  // Asked once for each connection, when it is new: which user of this machine is at its other end.
  // Any thread calls; it throws nothing. Empty: nobody wants to know.
  std::function<std::optional<std::uint32_t>(int socket)> findUser;
  // Users of this machine, as findUser tells of them, for whom some of the connections are kept
  // where there are many: a sixteenth, four at the most.
  std::vector<std::uint32_t> trustedUsers;
  // Called again and again, at least every second, while the server looks after its connections. It
  // throws nothing. Empty: nobody wants to know.
  std::function<void()> onSweep;
  std::string certificateFile;  // PEM, with its chain; for TLS endpoints
  std::string keyFile;          // PEM
  unsigned threads = 2;
  // At a time. When they are full, the connection that has waited longest for a request, or for its
  // end, gives way to a new one; none does whose request is read, handled or answered.
  std::size_t maxConnections = 128;
  std::size_t maxConnectionsPerAddress = 64;  // an address as toPeerGroup counts them
  std::size_t maxHeaderBytes = 16 * 1024;
  std::size_t maxBodyBytes = 1024 * 1024;
  // All answers together that clients have not taken yet; one that is larger goes out alone.
  std::size_t maxAnswerBytes = 64 * 1024 * 1024;
  // From a request's first byte to its last; also for the client to take 64 KiB of the answer.
  std::chrono::milliseconds requestTimeout{30'000};
  std::chrono::milliseconds idleTimeout{60'000};  // between requests
  // From here on, a client whose body has not come may have to give way like one that is idle.
  std::chrono::milliseconds slowBodyTime{5'000};
  // From here on, a client that has not taken its answer may have to give way like one that is
  // idle.
  std::chrono::milliseconds slowAnswerTime{10'000};
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

}  // namespace http

#endif  // ORVEX_HTTP_SERVEROPTIONS_H_
