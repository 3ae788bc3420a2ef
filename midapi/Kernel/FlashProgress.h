// How far a devlink flash has come, from what the driver tells while it goes on.
//
// A driver tells bytes of one component at a time, begins each at 0 again, and says things between
// that are no progress. Here all of it is one measure over all components: done() never falls,
// total() may grow. Keeps no reference; not for several threads.

#ifndef ORVEX_MIDAPI_KERNEL_FLASHPROGRESS_H_
#define ORVEX_MIDAPI_KERNEL_FLASHPROGRESS_H_

#include <cstdint>
#include <string>

#include "midapi/Kernel/DevlinkMessages.h"

namespace ma {

class FlashProgress {
 public:
  // `expected` is the number of bytes of all components that will be written, as the file says.
  explicit FlashProgress(std::uint64_t expected) : m_expected(expected) {}

  // Takes in what the driver told about the device that is being written.
  void note(const DevlinkFlashEvent& event);

  // Bytes written of total(); a driver may write more than the file says, or count otherwise.
  [[nodiscard]] std::uint64_t done() const { return m_finished + m_done; }
  [[nodiscard]] std::uint64_t total() const;

 private:
  const std::uint64_t m_expected;
  std::uint64_t m_finished = 0;  // of the components before this one
  std::string m_component;
  std::uint64_t m_done = 0;
  std::uint64_t m_ofComponent = 0;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_FLASHPROGRESS_H_
