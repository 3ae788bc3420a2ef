#include "midapi/Kernel/FlashOutcome.h"

#include <algorithm>
#include <string_view>

#include "midapi/Kernel/FirmwareCheck.h"
#include "midapi/VersionText.h"

namespace ma {
namespace {

bool isSame(std::string_view one, std::string_view other) {
  return one == other || (!one.empty() && !other.empty() && compareVersions(one, other) == 0);
}

bool isNamed(const NamedVersion& version, std::span<const FirmwareVersions> versions) {
  return std::ranges::find(versions, version.name, &FirmwareVersions::name) != versions.end();
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
    const std::string_view stored = storedVersion(versions, version.name);
    if (isNamed(version, versions) && !isSame(version.value, stored)) {
      return version.name + " is " + shown(stored) + ", and the file has " + version.value;
    }
  }
  return {};
}

FlashOutcome judge(const FlashEntry& entry, std::span<const FirmwareVersions> versions) {
  const bool canTell = std::ranges::any_of(
      entry.expected, [&](const NamedVersion& version) { return isNamed(version, versions); });
  if (!canTell) {
    return FlashOutcome::Unknown;
  }
  const bool isFiles = holds(entry.expected, versions);
  const bool isAsBefore = !entry.before.empty() && holds(entry.before, versions);
  if (isFiles) {
    return isAsBefore ? FlashOutcome::Unknown : FlashOutcome::Written;
  }
  return isAsBefore ? FlashOutcome::NotWritten : FlashOutcome::Mixed;
}

std::string describeStored(std::span<const FirmwareVersions> versions) {
  std::string text;
  for (const FirmwareVersions& version : versions) {
    text += text.empty() ? "" : ", ";
    text += version.name + " " + shown(storedVersion(versions, version.name));
  }
  return text.empty() ? "nothing that its driver tells" : text;
}

}  // namespace ma
