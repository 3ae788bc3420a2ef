// Looks through directories for firmware files, and remembers them by what identifies their
// content: a file that has not changed since the last look is not read again.

#ifndef ORVEX_INVENTORY_FIRMWARESEARCH_H_
#define ORVEX_INVENTORY_FIRMWARESEARCH_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Os/QuorvelConfig.h"
#include "midapi/FirmwareDescription.h"
#include "platform/FileIdentity.h"

namespace inventory {

// A sound file of a known format.
struct FirmwareFile {
  std::string path;  // absolute, with slashes
  ma::FirmwareDescription description;
  std::optional<platform::FileIdentity> identity;  // of what was read; nothing where in doubt
};

using FirmwareFilePtr = std::shared_ptr<const FirmwareFile>;

// Takes what a look finds, as it goes on.
class FirmwareFindings {
 public:
  FirmwareFindings() = default;
  FirmwareFindings(const FirmwareFindings&) = delete;
  FirmwareFindings& operator=(const FirmwareFindings&) = delete;
  virtual ~FirmwareFindings() = default;

  virtual void addFile(FirmwareFilePtr file) = 0;
  // A file or directory is left out, for a reason that somebody may mend.
  virtual void addProblem(const std::string& problem) = 0;
  // Returns whether the rest is of no interest.
  [[nodiscard]] virtual bool isEnough() const = 0;
};

// Returns the content of a file: no bytes where nothing is there, or more than the setting
// MaxImageSize allows; nothing where it cannot be read, or not in time (see Os/Files.h).
[[nodiscard]] std::optional<std::vector<std::uint8_t>> readFirmwareFile(const std::string& path);

// Returns what identifies the content of a file (see platform/FileIdentity.h); nothing, too, where
// its file system does not answer in time.
[[nodiscard]] std::optional<platform::FileIdentity> identifyFirmwareFile(const std::string& path);

// One look at a time. What a look costs grows with the number of files and with the bytes of those
// that have changed. Neither grows without bound: a look takes kMostFiles files, each within
// MaxImageSize, and each names FirmwareDescription::kMostListed devices at the most; the rest is
// left out with a problem.
class FirmwareSearch {
 public:
  static constexpr std::size_t kMostFiles = 1000;

  // Goes through the directories of the configuration in their order, in each by name; a file that
  // two of them reach is found once. Of a directory whose file system does not answer in time,
  // nothing is found.
  void look(utils::QuorvelConfig& config, FirmwareFindings& findings);

 private:
  class Look;

  // What was made of a file of that identity: a firmware file, or why it is none.
  struct Known {
    platform::FileIdentity identity;
    FirmwareFilePtr file;
    std::string problem;
  };

  std::map<std::string, Known> m_known;  // by path
};

}  // namespace inventory

#endif  // ORVEX_INVENTORY_FIRMWARESEARCH_H_
