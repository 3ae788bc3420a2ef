// A client that loads an HTTP server on this machine: a number of kept connections, each with one
// request under way, served by one thread that waits for whichever is ready: it takes one processor
// of the host's machine at the most.

#ifndef ORVEX_BENCH_LOADCLIENT_H_
#define ORVEX_BENCH_LOADCLIENT_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

// One request and what every answer to it has to be.
struct Question {
  std::string name;
  std::string request;  // header and body as they are sent
  std::string body;     // of the answer, byte for byte; empty: not checked but for its status
};

struct LoadLimits {
  unsigned connections = 1;
  std::size_t requests = 0;               // 0: as many as the time allows
  std::chrono::milliseconds duration{0};  // 0: until all requests are answered
};

struct LoadResult {
  std::size_t answers = 0;
  std::chrono::duration<double> time{0};
  std::vector<std::chrono::nanoseconds> latencies;  // sorted

  [[nodiscard]] double perSecond() const;
  // Returns the latency that `share` of the answers did not exceed, 0.99 for example.
  [[nodiscard]] std::chrono::nanoseconds quantile(double share) const;
};

// Asks 127.0.0.1:port the questions, one after the other, round and round. Throws
// std::runtime_error at the first answer that is not what it has to be, and when the server does
// not answer for 30 seconds. Defined per platform.
[[nodiscard]] LoadResult load(std::uint16_t port, const std::vector<Question>& questions,
                              const LoadLimits& limits);

// Asks once over a connection of its own and returns the body of the answer. Throws
// std::runtime_error for a status other than 200. Defined per platform.
[[nodiscard]] std::string ask(std::uint16_t port, std::string_view request);

}  // namespace bench

#endif  // ORVEX_BENCH_LOADCLIENT_H_
