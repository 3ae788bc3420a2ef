#include "midapi/Kernel/ReadBack.h"

#include <algorithm>
#include <utility>

#include "midapi/ImagePreparation.h"
#include "midapi/Kernel/FlashOutcome.h"

namespace ma {
namespace {

using Verdict = ReadBack::Verdict;

// Returns a name of which the flash held something before, and holds nothing now; null where there
// is none.
const FirmwareVersions* findEmptied(std::span<const NamedVersion> before,
                                    std::span<const FirmwareVersions> versions) {
  const auto found = std::ranges::find_if(versions, [before](const FirmwareVersions& version) {
    const auto earlier = std::ranges::find(before, version.name, &NamedVersion::name);
    return version.isErased && earlier != before.end() && !earlier->value.empty();
  });
  return found != versions.end() ? &*found : nullptr;
}

}  // namespace

ReadBack readBackVersions(const FlashEntry& entry, std::span<const FirmwareVersions> versions) {
  if (auto difference = findDifference(entry.expected, versions); !difference.empty()) {
    return {Verdict::Different, std::move(difference)};
  }
  if (const auto* const emptied = findEmptied(entry.before, versions)) {
    return {Verdict::Different, "there is no " + emptied->name + " in it any more"};
  }
  const auto& wanted = entry.expected.empty() ? entry.before : entry.expected;
  if (const auto name = findUntold(wanted, entry.before, versions); !name.empty()) {
    return {Verdict::Untold, "the version of " + name};
  }
  const bool isTold = std::ranges::any_of(entry.expected, [&](const NamedVersion& version) {
    const auto found = std::ranges::find(versions, version.name, &FirmwareVersions::name);
    return found != versions.end() && found->tellsStored();
  });
  return {isTold ? Verdict::Same : Verdict::NotCompared};
}

ReadBack readBackRom(const PciIds& ids, RomBytes image, RomBytes before, RomBytes shown) {
  if (shown.empty()) {
    return {Verdict::NotCompared};
  }
  const RomChain chain = parseRomChain(shown);
  const auto compared = chain.isValid()
                            ? compareImages({ids.vendor, ids.device, true}, image, shown)
                            : ImageComparison::Unknown;
  if (compared == ImageComparison::SameContent) {
    return {Verdict::Same};
  }
  if (std::ranges::equal(shown, before)) {
    return {Verdict::NotCompared};
  }
  if (compared == ImageComparison::SameVersion) {
    return {Verdict::Same};
  }
  return {Verdict::Different, chain.isValid()
                                  ? "its option ROM is neither the one from before nor the file's"
                                  : "its option ROM is damaged: " + chain.defect->toString()};
}

}  // namespace ma
