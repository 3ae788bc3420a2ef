// Looks at virtual adapters as a whole, and makes new ones: what a command line offers.
//
// Works on a directory of adapters without keeping anything in memory, so any thread may use it at
// any time, also beside the flash library's own operations. Failures are thrown as AdapterFault.

#ifndef ORVEX_MIDAPI_VIRTUAL_VIRTUALADAPTERS_H_
#define ORVEX_MIDAPI_VIRTUAL_VIRTUALADAPTERS_H_

#include <cstdint>
#include <filesystem>
#include <string>

#include "midapi/AdapterFault.h"
#include "midapi/AdapterId.h"
#include "midapi/AdapterListing.h"
#include "midapi/Export.h"

namespace ma {

// The write rate of an adapter of which nothing else is said: some seconds for a usual image.
inline constexpr std::uint64_t kDefaultWriteRate = 128 * 1024;

// What a new adapter is made of.
struct AdapterSpec {
  AdapterAddress pci;
  std::string name;
  std::uint16_t vendor = 0;
  std::uint16_t device = 0;
  // 1 to kMaxPorts.
  unsigned ports = 1;
  // The file that its flash starts with: a valid chain of PCI Expansion ROM images.
  std::filesystem::path rom;
  std::uint64_t writeRate = kDefaultWriteRate;
};

class ORVEX_MIDAPI_API VirtualAdapters {
 public:
  // Works on the directory of the flash library: ORVEX_ADAPTERS of the environment, or its default.
  VirtualAdapters();
  explicit VirtualAdapters(std::filesystem::path directory);

  [[nodiscard]] const std::filesystem::path& directory() const { return m_directory; }

  // Returns all adapters, and what stands in their directory without being one. A directory that
  // does not exist holds none.
  [[nodiscard]] AdapterList list() const;

  // Makes an adapter, and the adapters directory where it is missing. Refuses an address that is
  // taken, ports out of range, and a file that is no valid chain. The adapter appears as a whole or
  // not at all. Its ports boot by PXE where its ROM can, and their MAC addresses follow from the
  // PCI address.
  void add(const AdapterSpec& spec) const;

 private:
  std::filesystem::path m_directory;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_VIRTUAL_VIRTUALADAPTERS_H_
