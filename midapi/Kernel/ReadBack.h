// What an adapter shows after a flash, compared with what was written to it.
//
// Pure; throws nothing but std::bad_alloc.

#ifndef ORVEX_MIDAPI_KERNEL_READBACK_H_
#define ORVEX_MIDAPI_KERNEL_READBACK_H_

#include <span>
#include <string>

#include "midapi/AdapterListing.h"
#include "midapi/Kernel/FlashJournal.h"
#include "midapi/OptionRom.h"
#include "midapi/PciIds.h"

namespace ma {

struct ReadBack {
  enum class Verdict {
    Same,
    Different,
    Untold,       // something that was told before is not told any more
    NotCompared,  // nothing that is shown can be compared
  };

  Verdict verdict = Verdict::NotCompared;
  std::string text{};  // what is different or untold, in one line
};

// Compares the versions: with those of the file where it says which it has, else no more than that
// the flash has not been emptied.
[[nodiscard]] ReadBack readBackVersions(const FlashEntry& entry,
                                        std::span<const FirmwareVersions> versions);

// Compares an option ROM that was written with the one that the adapter shows. Many show a new one
// after the next start only, and some none while they work.
[[nodiscard]] ReadBack readBackRom(const PciIds& ids, RomBytes image, RomBytes before,
                                   RomBytes shown);

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_READBACK_H_
