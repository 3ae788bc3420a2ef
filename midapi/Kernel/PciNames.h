// What people call PCI devices, by the list of them that the system has (pci.ids).
//
// The list is read when a name is first asked for, and kept. Any thread may call; one at a time is
// served, from memory but for the first.

#ifndef ORVEX_MIDAPI_KERNEL_PCINAMES_H_
#define ORVEX_MIDAPI_KERNEL_PCINAMES_H_

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "platform/Mutex.h"

struct pci_access;

namespace ma {

class PciNames {
 public:
  // An empty path is where the system has its list.
  explicit PciNames(const std::filesystem::path& list = {});

  // Returns for example "Intel Corporation 82574L Gigabit Network Connection", fit for a terminal;
  // nothing where the list does not have both parts, is not there or is damaged.
  [[nodiscard]] std::string nameOf(std::uint16_t vendor, std::uint16_t device);

 private:
  struct Closer {
    void operator()(pci_access* access) const;
  };

  platform::Mutex m_mutex;
  std::unique_ptr<pci_access, Closer> m_access ORVEX_GUARDED_BY(m_mutex);
  bool m_isUsable ORVEX_GUARDED_BY(m_mutex) = true;
};

// Returns the names of the system's list; lives as long as the process.
[[nodiscard]] PciNames& systemPciNames();

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_PCINAMES_H_
