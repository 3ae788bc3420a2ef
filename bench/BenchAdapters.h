// Virtual adapters in a temporary directory, and the agents that serve them, in this process.

#ifndef ORVEX_BENCH_BENCHADAPTERS_H_
#define ORVEX_BENCH_BENCHADAPTERS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/TempDirectory.h"

namespace bench {

// Makes both agents serve in this process, once.
void registerAgents();

// Returns the bytes of a ROM for the adapters below: one EFI image of that size, a multiple of 512.
[[nodiscard]] std::vector<std::uint8_t> makeRom(std::size_t bytes);

// `count` two-port adapters, whose flash holds a ROM of `romBytes` and is written without a limit
// of the rate. They are those that the flash library manages from their construction, or from
// select(), until others are.
class Adapters {
 public:
  explicit Adapters(std::size_t count, std::size_t romBytes = 512);
  Adapters(const Adapters&) = delete;
  Adapters& operator=(const Adapters&) = delete;
  ~Adapters();

  void select() const;

  // Adds an adapter of one port behind all others, whose flash holds `romBytes` and is written at
  // `rate` bytes a second. Returns its port.
  std::string addSlow(std::size_t romBytes, std::uint64_t rate) const;

  // The first port of the first adapter.
  [[nodiscard]] static std::string firstPort() { return "0000:00:00.0"; }
  // The URI of the file that every adapter's flash was made from, and of that of the slow one.
  [[nodiscard]] std::string romUri() const;
  [[nodiscard]] std::string slowRomUri() const;

 private:
  test::TempDirectory m_directory;
};

}  // namespace bench

#endif  // ORVEX_BENCH_BENCHADAPTERS_H_
