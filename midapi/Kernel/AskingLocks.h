// Locks that keep several programs from asking a driver at which a child process of one of them
// hangs: a monitor that runs every minute would leave one behind each time.
//
// A lock is a file, which the child locks (flock) for as long as it asks, and which says by its
// time of change since when; its end is the end of the lock. Each user has a folder of its own
// below a common one, /run/lock, which goes with the machine: what another user locks keeps nobody
// but, where root does, others. Where no folder can be had nobody is kept. Any thread.

#ifndef ORVEX_MIDAPI_KERNEL_ASKINGLOCKS_H_
#define ORVEX_MIDAPI_KERNEL_ASKINGLOCKS_H_

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ma {

using SystemTime = std::chrono::system_clock::time_point;

class AskingLocks {
 public:
  // `common` is empty where nothing is to be locked. Whoever holds a lock for longer than
  // `patience` hangs.
  AskingLocks(std::filesystem::path common, std::chrono::milliseconds patience)
      : m_common(std::move(common)), m_patience(patience) {}

  // Returns the order of Errand::Lock for a name; empty where there is none to be locked.
  [[nodiscard]] std::vector<std::uint8_t> orderFor(const std::string& name) const;
  // Returns since when the kernel has not answered the child that had the lock already, by the
  // reply to the order.
  [[nodiscard]] static std::optional<SystemTime> heldSince(int error,
                                                           const std::vector<std::uint8_t>& reply);
  // Returns since when root's child has not been answered, to a process of another user.
  [[nodiscard]] std::optional<SystemTime> heldByRootSince(const std::string& name) const;

 private:
  const std::filesystem::path m_common;
  const std::chrono::milliseconds m_patience;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_ASKINGLOCKS_H_
