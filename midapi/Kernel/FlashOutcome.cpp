#include "midapi/Kernel/FlashOutcome.h"

#include <algorithm>
#include <string_view>

#include "midapi/VersionText.h"

namespace ma {
namespace {

bool isSame(std::string_view one, std::string_view other) {
  return one == other || (!one.empty() && !other.empty() && compareVersions(one, other) == 0);
}

// Returns what is told of the flash under that name; null where nothing is.
const FirmwareVersions* findStored(const std::string& name,
                                   std::span<const FirmwareVersions> versions) {
  const auto found = std::ranges::find(versions, name, &FirmwareVersions::name);
  return found != versions.end() && found->tellsStored() ? &*found : nullptr;
}

bool holds(std::span<const NamedVersion> expected, std::span<const FirmwareVersions> versions) {
  return findDifference(expected, versions).empty();
}

std::string shown(std::string_view version) {
  return version.empty() ? "(none)" : std::string(version);
}

}  // namespace

std::string findDifference(std::span<const NamedVersion> expected,
                           std::span<const FirmwareVersions> versions) {
  for (const NamedVersion& version : expected) {
    const FirmwareVersions* const found = findStored(version.name, versions);
    if (found != nullptr && !isSame(version.value, found->stored)) {
      return version.name + " is " + shown(found->stored) + ", and the file has " + version.value;
    }
  }
  return {};
}

std::string findUntold(std::span<const NamedVersion> expected, std::span<const NamedVersion> before,
                       std::span<const FirmwareVersions> versions) {
  for (const NamedVersion& version : expected) {
    const bool wasTold =
        std::ranges::find(before, version.name, &NamedVersion::name) != before.end();
    if (wasTold && findStored(version.name, versions) == nullptr) {
      return version.name;
    }
  }
  return {};
}

FlashOutcome judge(const FlashEntry& entry, std::span<const FirmwareVersions> versions) {
  const bool canTell = std::ranges::any_of(entry.expected, [&](const NamedVersion& version) {
    return findStored(version.name, versions) != nullptr;
  });
  if (!canTell) {
    return FlashOutcome::Unknown;
  }
  const bool isTold = findUntold(entry.expected, entry.before, versions).empty();
  const bool isFiles = holds(entry.expected, versions);
  const bool isAsBefore = !entry.before.empty() && holds(entry.before, versions);
  if (!isTold && (isFiles || isAsBefore)) {
    return FlashOutcome::Unknown;
  }
  if (isFiles) {
    return isAsBefore ? FlashOutcome::Unknown : FlashOutcome::Written;
  }
  return isAsBefore ? FlashOutcome::NotWritten : FlashOutcome::Mixed;
}

std::string describeStored(std::span<const FirmwareVersions> versions) {
  std::string text;
  for (const FirmwareVersions& version : versions) {
    if (version.tellsStored()) {
      text += text.empty() ? "" : ", ";
      text += version.name + " " + shown(version.stored);
    }
  }
  return text.empty() ? "nothing that its driver tells" : text;
}

}  // namespace ma
