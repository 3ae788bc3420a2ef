// What is known of the adapters that the kernel drives.
//
// What sysfs says is read at each look. What the drivers say is asked for all adapters at once, and
// is a second old at the most; option ROMs and VPD are read once for as long as a function is
// plugged in. An adapter whose flash is being written is not asked, nor is one that has not answered
// before it does: of those, what was last known is told, at once. Any thread may call.

#ifndef ORVEX_MIDAPI_KERNEL_KERNELADAPTERS_H_
#define ORVEX_MIDAPI_KERNEL_KERNELADAPTERS_H_

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <vector>

#include "midapi/AdapterId.h"
#include "midapi/Kernel/DriverCalls.h"
#include "midapi/Kernel/FlashJournal.h"
#include "midapi/Kernel/PciFunctions.h"
#include "platform/Clock.h"
#include "platform/Mutex.h"

namespace ma {

struct KernelFunction {
  PciFunction pci;
  DriverAnswer answer;  // the last one there is
};

struct KernelAdapter {
  AdapterAddress address;
  std::vector<KernelFunction> functions;  // by number; one at the least
  // Somebody writes its flash, or its driver does not answer: the answers are the last ones.
  bool isBeingWritten = false;
};

class KernelAdapters {
 public:
  static constexpr std::chrono::seconds kFresh{1};

  // Referents outlive the object. `sysfs` is /sys, or a folder that stands for it.
  KernelAdapters(std::filesystem::path sysfs, DriverCalls& drivers, const FlashJournal& journal,
                 platform::Clock& clock);

  // Returns the functions that there are, ordered by address; asks no driver.
  [[nodiscard]] std::vector<PciFunction> functions() const;
  // Return the adapters, ordered by address; one of them, nothing where there is none.
  [[nodiscard]] std::vector<KernelAdapter> all();
  [[nodiscard]] std::optional<KernelAdapter> find(const AdapterAddress& address);

  // Something has changed: the next one who wants to know of the adapter asks its driver.
  void forget(const AdapterAddress& address);
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_KERNELADAPTERS_H_
