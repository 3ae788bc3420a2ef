#include "midapi/Kernel/SeenAdapter.h"

#include <algorithm>
#include <string_view>

#include "midapi/ImagePreparation.h"
#include "midapi/Kernel/KernelListing.h"
#include "midapi/OptionRom.h"
#include "midapi/PciVpd.h"

namespace ma {
namespace {

void add(std::vector<NamedVersion>& texts, const std::string& name, std::string_view value) {
  if (!value.empty()) {
    texts.push_back({name, std::string(value)});
  }
}

std::vector<NamedVersion> serialNumbersOf(const KernelAdapter& adapter) {
  std::vector<NamedVersion> numbers;
  for (const KernelFunction& function : adapter.functions) {
    const std::string of = " of " + toString(function.pci.id);
    if (const auto& devlink = function.answer.devlink) {
      add(numbers, "the serial number" + of, devlink->serialNumber);
      add(numbers, "the board's serial number" + of, devlink->boardSerialNumber);
    }
    add(numbers, "the serial number in the VPD" + of,
        parsePciVpd(function.answer.vpd.bytes).serialNumber());
  }
  return numbers;
}

std::vector<NamedVersion> decisiveOf(std::span<const FirmwareVersions> versions) {
  std::vector<NamedVersion> decisive;
  decisive.reserve(versions.size());
  for (const FirmwareVersions& version : versions) {
    decisive.push_back({version.name, version.tellsStored() ? version.stored : version.running});
  }
  return decisive;
}

// By their places: there may be several of one type.
std::vector<NamedVersion> imagesOf(const PciIds& ids, RomBytes rom) {
  std::vector<NamedVersion> images;
  for (const utils::FirmwareVersionInfo& image :
       firmwareOf({ids.vendor, ids.device, true}, parseRomChain(rom))) {
    images.push_back({"image " + std::to_string(images.size() + 1) + " of its option ROM",
                      std::string(firmwareTypeName(image.type)) + " " + image.version.toString()});
  }
  return images;
}

std::string shown(std::string_view text) {
  return text.empty() ? "(none)" : std::string(text);
}

std::string change(const std::string& what, std::string_view before, std::string_view now) {
  return before == now ? "" : what + " was " + shown(before) + ", and is " + shown(now) + " now";
}

std::string_view valueOf(const std::vector<NamedVersion>& texts, const std::string& name) {
  const auto found = std::ranges::find(texts, name, &NamedVersion::name);
  return found != texts.end() ? std::string_view(found->value) : std::string_view();
}

std::string findChangeOf(const std::vector<NamedVersion>& seen,
                         const std::vector<NamedVersion>& now) {
  for (const NamedVersion& text : seen) {
    if (auto found = change(text.name, text.value, valueOf(now, text.name)); !found.empty()) {
      return found;
    }
  }
  return {};
}

// The other way round as well: what was not there then is not the firmware that was checked.
std::string findChangeOfFirmware(const std::vector<NamedVersion>& seen,
                                 const std::vector<NamedVersion>& now) {
  if (auto found = findChangeOf(seen, now); !found.empty() || seen.empty()) {
    return found;
  }
  for (const NamedVersion& text : now) {
    if (std::ranges::find(seen, text.name, &NamedVersion::name) == seen.end()) {
      return change(text.name, "", text.value);
    }
  }
  return {};
}

}  // namespace

SeenAdapter see(const KernelAdapter& adapter, const KernelFunction& through,
                std::span<const FirmwareVersions> versions) {
  SeenAdapter seen{through.pci.ids, through.pci.driver, serialNumbersOf(adapter),
                   decisiveOf(versions), std::nullopt};
  if (isRomKnown(adapter)) {
    seen.images = imagesOf(through.pci.ids, romOf(adapter, through.pci.id.function));
  }
  return seen;
}

std::string findChange(const SeenAdapter& seen, const SeenAdapter& now) {
  if (seen.ids != now.ids) {
    return change("its device", describeDevice(seen.ids), describeDevice(now.ids));
  }
  if (seen.driver != now.driver) {
    return change("its driver", seen.driver, now.driver);
  }
  if (auto found = findChangeOf(seen.serialNumbers, now.serialNumbers); !found.empty()) {
    return found;
  }
  if (auto found = findChangeOfFirmware(seen.versions, now.versions); !found.empty()) {
    return found;
  }
  return seen.images && now.images ? findChangeOfFirmware(*seen.images, *now.images) : "";
}

void SeenAdapters::note(const AdapterAddress& adapter, std::uint64_t fileDigest, SeenAdapter seen) {
  const platform::Lock lock(m_mutex);
  Files& files = m_seen[adapter];
  files.emplace_back(fileDigest, std::move(seen));
  const auto earlier = std::find_if(files.begin(), files.end() - 1, [fileDigest](const auto& file) {
    return file.first == fileDigest;
  });
  if (earlier != files.end() - 1) {
    files.erase(earlier);
  } else if (files.size() > kMostFiles) {
    files.pop_front();
  }
}

std::optional<SeenAdapter> SeenAdapters::find(const AdapterAddress& adapter,
                                              std::uint64_t fileDigest) const {
  const platform::Lock lock(m_mutex);
  const auto files = m_seen.find(adapter);
  if (files == m_seen.end()) {
    return std::nullopt;
  }
  const auto found = std::ranges::find(files->second, fileDigest, &Files::value_type::first);
  return found != files->second.end() ? std::optional(found->second) : std::nullopt;
}

}  // namespace ma
