// Firmware in the folder from which the kernel takes it: the kernel is given a name, never bytes.
//
// What is written there is exactly what was checked, under a name that nobody can guess, and goes
// with this object. A process that is killed leaves it behind; sweepStagedFirmware() removes it.
// Whoever stages or sweeps firmware for an adapter is the only one who does at the time. Failures
// are FlashFaults.

#ifndef ORVEX_MIDAPI_KERNEL_STAGEDFIRMWARE_H_
#define ORVEX_MIDAPI_KERNEL_STAGEDFIRMWARE_H_

#include <filesystem>
#include <set>
#include <string>

#include "midapi/AdapterId.h"
#include "midapi/FileSystem.h"
#include "midapi/TemporaryFiles.h"

namespace ma {

class StagedFirmware {
 public:
  // Writes `content` into the kernel's folder of firmware, for one adapter. Where that fails, the
  // text names the folder and the setting that names another one. Referents outlive the object.
  StagedFirmware(FileSystem& files, const std::filesystem::path& folder,
                 const AdapterAddress& adapter, ConstBytes content);
  StagedFirmware(const StagedFirmware&) = delete;
  StagedFirmware& operator=(const StagedFirmware&) = delete;
  ~StagedFirmware() = default;

  // Returns the name by which the kernel finds it, that in the folder.
  [[nodiscard]] std::string name() const { return m_file.path().filename().string(); }

 private:
  TemporaryPath m_file;
};

// Returns why nobody with the rights of this process can stage firmware there, with what to do, in
// one line; empty where that is possible.
[[nodiscard]] std::string whyNotStageable(const std::filesystem::path& folder);

// Returns the adapters for which something lies in the folder, be its writer alive or not, and be
// the adapter there or not. Reads the folder once, and minds no failure.
[[nodiscard]] std::set<AdapterAddress> findStagedFirmware(FileSystem& files,
                                                          const std::filesystem::path& folder);

// Removes what dead processes have left in the folder of one adapter's firmware. Minds no failure:
// what stays is in nobody's way.
void sweepStagedFirmware(FileSystem& files, const std::filesystem::path& folder,
                         const AdapterAddress& adapter);

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_STAGEDFIRMWARE_H_
