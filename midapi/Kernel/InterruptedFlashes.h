// What became of flashes whose writers are gone: the kernel has gone on with them, and nobody was
// told how they ended. An entry of the journal without a writer is such a flash, and the versions
// that the driver tells say what came of it, as far as they can.
//
// Owns nothing; any thread.

#ifndef ORVEX_MIDAPI_KERNEL_INTERRUPTEDFLASHES_H_
#define ORVEX_MIDAPI_KERNEL_INTERRUPTEDFLASHES_H_

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "midapi/AdapterId.h"
#include "midapi/AdapterListing.h"
#include "midapi/FileSystem.h"
#include "midapi/Kernel/DriverCalls.h"
#include "midapi/Kernel/FlashJournal.h"
#include "midapi/Kernel/KernelAdapters.h"

namespace ma {

class InterruptedFlashes {
 public:
  struct LeftOver {
    std::string text;
    std::string advice;  // empty where there is nothing to be done
  };

  // Referents outlive the object.
  InterruptedFlashes(FileSystem& files, const FlashJournal& journal, const DriverCalls& drivers)
      : m_files(files), m_journal(journal), m_drivers(drivers) {}

  // Says what has become of an update of the adapter whose process is gone; empty where there is
  // none, and as long as the kernel goes on with it. Where all went well, it is told once. What was
  // staged in the folder goes.
  [[nodiscard]] LeftOver leftOverOf(const KernelAdapter& adapter,
                                    const std::filesystem::path& firmwareFolder) const;

  // Says the same of adapters that are not there, `present` being all those that are: nobody can be
  // asked what has become of these.
  [[nodiscard]] std::vector<AdapterProblem> leftOverOfAbsent(
      const std::set<AdapterAddress>& present) const;

  // Removes from the kernel's folder what processes left there that were killed before they asked
  // the kernel for anything, or whose adapter is not there any more.
  void sweepUnasked(const std::set<AdapterAddress>& present,
                    const std::filesystem::path& firmwareFolder) const;

  // Throws where the flash is being written, or was not written whole: it is not to be put into
  // force.
  void refuseUnfinished(const KernelAdapter& adapter, const PortId& function) const;

 private:
  // Returns the adapter's entry; nothing, too, where this process may not read it. One that is
  // damaged is a FlashFault.
  [[nodiscard]] std::optional<FlashEntry> readableEntry(const AdapterAddress& adapter) const;

  FileSystem& m_files;
  const FlashJournal& m_journal;
  const DriverCalls& m_drivers;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_INTERRUPTEDFLASHES_H_
