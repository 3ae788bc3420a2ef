// Looks at virtual adapters as a whole, and makes new ones: what a command line offers.
//
// Works on a directory of adapters without keeping anything in memory, so any thread may use it at
// any time, also beside the flash library's own operations. Failures are thrown as AdapterFault.

#ifndef ORVEX_MIDAPI_VIRTUAL_VIRTUALADAPTERS_H_
#define ORVEX_MIDAPI_VIRTUAL_VIRTUALADAPTERS_H_

#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "Utils/FirmwareTypes.h"
#include "midapi/AdapterId.h"
#include "midapi/Export.h"
#include "midapi/FlashTypes.h"

namespace ma {

// What went wrong, with what, and what to do about it: what() is one line for a person.
class ORVEX_MIDAPI_API AdapterFault final : public std::exception {
 public:
  explicit AdapterFault(std::string text);
  AdapterFault(const AdapterFault&) = default;
  AdapterFault& operator=(const AdapterFault&) = default;
  ~AdapterFault() override;

  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }

 private:
  std::string m_text;
};

struct AdapterPort {
  // As the flash library names the port: "0000:03:00.0".
  std::string identifier;
  std::string mac;
  BootType bootType = BootType::None;
};

// One image in an adapter's flash.
struct AdapterComponent {
  utils::FirmwareType type = utils::FirmwareType::None;
  utils::FirmwareVersion version;
  std::uint16_t vendor = 0;
  std::uint16_t device = 0;
  // False for an image that is for other devices only.
  bool isForAdapter = false;
  std::size_t offset = 0;
  std::size_t length = 0;
  // FNV-1a of the image's bytes: tells images of one version apart.
  std::uint64_t digest = 0;
};

struct AdapterListing {
  // "0000:03:00"
  std::string pci;
  std::string name;
  std::uint16_t vendor = 0;
  std::uint16_t device = 0;
  std::vector<AdapterPort> ports;
  std::vector<AdapterComponent> components;
  // Why the flash holds no valid image chain; empty when it holds one or is blank.
  std::string flashDefect;
  std::size_t flashBytes = 0;
  // Bytes per second, 0 for no limit.
  std::uint64_t writeRate = 0;
  bool isUpdatable = false;
  std::uint32_t capabilityWord = 0;
};

// A folder in the adapters directory that the flash library passes over, and why.
struct AdapterProblem {
  std::filesystem::path folder;
  std::string text;
};

struct AdapterList {
  // Ordered by PCI address.
  std::vector<AdapterListing> adapters;
  std::vector<AdapterProblem> problems;
};

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
