// A quorveld that a benchmark runs beside itself, on this machine's loopback.

#ifndef ORVEX_BENCH_HOSTPROCESS_H_
#define ORVEX_BENCH_HOSTPROCESS_H_

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace bench {

// Returns a port of 127.0.0.1 that nobody uses at the moment. Throws std::system_error. Defined per
// platform, as is what follows.
[[nodiscard]] std::uint16_t findFreePort();

class HostProcess {
 public:
  // Starts the program, without its standard output; it need not serve yet. Throws
  // std::system_error.
  HostProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments);
  HostProcess(const HostProcess&) = delete;
  HostProcess& operator=(const HostProcess&) = delete;
  // Ends the program in the hard way where it still runs.
  ~HostProcess();

  // Returns the memory that the program has in use, in KiB of resident pages. Throws
  // std::runtime_error when it is gone.
  [[nodiscard]] std::size_t residentKib() const;

  // Asks the program to end and waits for that. Returns its exit status, 128 and the signal's
  // number where a signal ended it.
  int stop();

 private:
  int m_process;  // 0 once it is gone
};

}  // namespace bench

#endif  // ORVEX_BENCH_HOSTPROCESS_H_
