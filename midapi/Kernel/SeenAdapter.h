// What a check of a firmware file saw of an adapter, to be compared with what is there right before
// the file is written: between the two a job may wait for long, and cards can be exchanged while
// the machine runs.
//
// Plain values and a table of them, which any thread may use; throws nothing but std::bad_alloc.

#ifndef ORVEX_MIDAPI_KERNEL_SEENADAPTER_H_
#define ORVEX_MIDAPI_KERNEL_SEENADAPTER_H_

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "midapi/AdapterId.h"
#include "midapi/AdapterListing.h"
#include "midapi/Kernel/DevlinkMessages.h"
#include "midapi/Kernel/KernelAdapters.h"
#include "midapi/PciIds.h"
#include "platform/Mutex.h"

namespace ma {

struct SeenAdapter {
  PciIds ids;          // of the function through which it is written
  std::string driver;  // of that
  // What each function says, by devlink and in its VPD; under the same name where it is the same
  // thing.
  std::vector<NamedVersion> serialNumbers;
  std::vector<NamedVersion> versions;  // stored, or running where that is all there is to know
  std::optional<std::vector<NamedVersion>> images;  // of the option ROM, where it could be read
};

// Returns what is to be seen of an adapter that is written through that function of it.
[[nodiscard]] SeenAdapter see(const KernelAdapter& adapter, const KernelFunction& through,
                              std::span<const FirmwareVersions> versions);

// Returns the first difference, for example "its serial number was A1, and is B2 now"; empty where
// there is none. What the check did not see is not compared.
[[nodiscard]] std::string findChange(const SeenAdapter& seen, const SeenAdapter& now);

class SeenAdapters {
 public:
  // A file that was checked and never written stays until so many others were.
  static constexpr std::size_t kMostFiles = 16;

  // Of several checks of the same bytes the last one counts.
  void note(const AdapterAddress& adapter, std::uint64_t fileDigest, SeenAdapter seen);
  // Returns what the check of these bytes saw; nothing where there was none.
  [[nodiscard]] std::optional<SeenAdapter> find(const AdapterAddress& adapter,
                                                std::uint64_t fileDigest) const;

 private:
  using Files = std::deque<std::pair<std::uint64_t, SeenAdapter>>;  // the oldest first

  mutable platform::Mutex m_mutex;
  std::map<AdapterAddress, Files> m_seen ORVEX_GUARDED_BY(m_mutex);
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_SEENADAPTER_H_
