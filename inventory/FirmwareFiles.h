// The firmware files in the directories of the configuration (FWFilePath).

#ifndef ORVEX_INVENTORY_FIRMWAREFILES_H_
#define ORVEX_INVENTORY_FIRMWAREFILES_H_

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "Utils/Mutex.h"
#include "midapi/MidApi.h"

namespace inventory {

// A file that holds a valid chain of PCI Expansion ROM images.
struct FirmwareFile {
  std::string path;  // absolute, with slashes
  std::vector<ma::FlashImageInfo> images;
};

// Returns the content of the file; empty when it cannot be read or is larger than any expansion ROM
// (16 MiB, PCI Local Bus Specification 3.0, 6.2.5.2).
[[nodiscard]] std::vector<std::uint8_t> readFirmwareFile(const std::string& path);

// Looks for the files afresh each time. Of what it found it remembers only which problems it has
// reported, under a lock of its own. Any thread may call.
class FirmwareFiles {
 public:
  // Returns the files, directory by directory in the order of the configuration and in each by
  // name; a file that two of the directories reach is there once. A file that is no firmware is
  // left out and reported to the log, and so is a directory that cannot be read: once, until the
  // problem has changed or was gone.
  [[nodiscard]] std::vector<FirmwareFile> find();

 private:
  void report(std::set<std::string> problems);

  utils::Mutex m_lock;
  std::set<std::string> m_reported ORVEX_GUARDED_BY(m_lock);
};

}  // namespace inventory

#endif  // ORVEX_INVENTORY_FIRMWAREFILES_H_
