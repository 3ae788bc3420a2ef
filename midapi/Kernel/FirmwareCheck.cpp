#include "midapi/Kernel/FirmwareCheck.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <set>
#include <utility>

#include "midapi/FirmwareFormat.h"
#include "midapi/ImagePreparation.h"
#include "midapi/PldmMatch.h"
#include "midapi/PldmPackage.h"
#include "midapi/PldmRoms.h"
#include "midapi/VersionText.h"

namespace ma {
namespace {

using utils::FirmwareType;
using Types = std::vector<FirmwareType>;

constexpr std::size_t kMostNamed = 4;  // devices that a reason names

Preparation refuse(PrepareStatus status, std::string reason) {
  return {status, 0, std::move(reason)};
}

// Names the first few.
std::string join(const std::set<std::string>& texts) {
  std::string text;
  std::size_t named = 0;
  for (auto next = texts.begin(); next != texts.end() && named < kMostNamed; ++next, ++named) {
    text += (text.empty() ? "" : ", ") + *next;
  }
  if (texts.size() > named) {
    text += " and " + std::to_string(texts.size() - named) + " others";
  }
  return text;
}

std::string namesOf(const std::set<FirmwareType>& types) {
  std::string names;
  for (const FirmwareType type : types) {
    names += names.empty() ? "" : ", ";
    names += firmwareTypeName(type);
  }
  return names.empty() ? "none" : names;
}

std::set<FirmwareType> typesOf(const std::vector<utils::FirmwareVersionInfo>& firmware) {
  std::set<FirmwareType> types;
  for (const utils::FirmwareVersionInfo& image : firmware) {
    types.insert(image.type);
  }
  return types;
}

std::string trustAdvice(const FirmwareTarget& target) {
  return "; if its driver's own check is enough, name " + std::string(target.driverName) +
         " in the setting TrustDriverCheck";
}

Preparation refuseOtherDevices(const FirmwareTarget& target, const std::set<std::string>& devices) {
  return refuse(
      PrepareStatus::NotForAdapter,
      "the file is for " + join(devices) + ", and the adapter is " + describeDevice(target.ids));
}

// A driver that writes nothing at all is no matter of the file.
std::optional<Preparation> checkFormat(const FirmwareTarget& target, FirmwareFormat format) {
  if (takes(*target.driver, format) || !target.driver->canWrite()) {
    return std::nullopt;
  }
  return refuse(PrepareStatus::NotForAdapter,
                "the file is of the format \"" + std::string(nameOf(format)) +
                    "\", which the adapter's driver " + std::string(target.driverName) +
                    " does not take");
}

std::optional<Preparation> checkTrust(const FirmwareTarget& target) {
  if (target.isTrusted) {
    return std::nullopt;
  }
  return refuse(PrepareStatus::NotForAdapter,
                "the file does not say which devices it is for" +
                    (target.driver->canWrite() ? trustAdvice(target) : std::string()));
}

std::optional<Preparation> checkUpdatable(const FirmwareTarget& target) {
  if (target.whyNotUpdatable.empty()) {
    return std::nullopt;
  }
  return refuse(PrepareStatus::NotUpdatable, std::string(target.whyNotUpdatable));
}

// Checks whether the file has the types that are asked for; what else it has does not matter.
std::optional<Preparation> checkTypes(const std::set<FirmwareType>& offered, const Types& types) {
  std::set<FirmwareType> wanted(types.begin(), types.end());
  wanted.erase(FirmwareType::None);
  if (types.empty() || (!wanted.empty() && std::ranges::includes(offered, wanted))) {
    return std::nullopt;
  }
  return refuse(PrepareStatus::TypesDiffer, "the file's images for the adapter are " +
                                                namesOf(offered) + ", and " + namesOf(wanted) +
                                                " is asked for");
}

// Fills the buffer with the very file; a refusal that may be accepted comes with it.
Preparation copyWhole(ConstBytes file, std::span<std::uint8_t> buffer, Preparation verdict = {}) {
  if (file.size() > buffer.size()) {
    return refuse(PrepareStatus::InternalFault, "the buffer is smaller than the file");
  }
  std::ranges::copy(file, buffer.begin());
  verdict.filled = static_cast<std::uint32_t>(file.size());
  return verdict;
}

// ---- packages ----

const PldmRecord* findRecord(const PldmPackage& package, const PciIds& ids) {
  const std::vector<std::size_t> found = findRecordsFor(package, ids);
  return found.empty() ? nullptr : &package.devices[found.front()];
}

std::optional<Preparation> checkSoundness(const PldmPackage& package,
                                          const std::vector<PldmRom>& roms) {
  if (!package.isValid()) {
    return refuse(PrepareStatus::InvalidImage,
                  "the firmware package is damaged: " + package.defect->toString());
  }
  // The kernel would write a changed byte: most packages have no checksum over their components.
  for (const PldmRom& rom : roms) {
    if (!rom.chain.isValid()) {
      return refuse(PrepareStatus::InvalidImage,
                    "the option ROM in the package's component " + std::to_string(rom.component) +
                        " is damaged: " + rom.chain.defect->toString());
    }
  }
  return std::nullopt;
}

std::optional<Preparation> checkRecord(const FirmwareTarget& target, const PldmPackage& package,
                                       const PldmRecord* record) {
  if (record == nullptr) {
    std::set<std::string> devices;
    for (const PldmRecord& other : package.devices) {
      devices.insert(describeIds(idsOf(other)));
    }
    return devices.empty()
               ? refuse(PrepareStatus::NotForAdapter, "the firmware package is for no device")
               : refuseOtherDevices(target, devices);
  }
  if (!namesDevice(*record)) {
    if (auto refusal = checkTrust(target)) {
      return refusal;
    }
  }
  if (record->components.empty()) {
    return refuse(PrepareStatus::NotForAdapter,
                  "the firmware package has no component for the adapter");
  }
  if (std::string refusal = kernelRefusalOf(package); !refusal.empty()) {
    return refuse(PrepareStatus::NotForAdapter, std::move(refusal));
  }
  return std::nullopt;
}

std::set<FirmwareType> typesFor(const PldmRecord& record, const std::vector<PldmRom>& roms) {
  std::set<FirmwareType> types;
  for (const PldmRom& rom : roms) {
    if (std::ranges::find(record.components, rom.component) != record.components.end()) {
      types.merge(typesOf(firmwareOf(rom.chain)));
    }
  }
  return types;
}

std::vector<NamedVersion> versionsFor(const KernelDriver& driver, const PldmPackage& package,
                                      const PldmRecord& record) {
  std::vector<NamedVersion> versions;
  for (const std::size_t index : record.components) {
    const PldmComponent& component = package.components[index];
    const std::string_view name = componentName(driver, component.identifier);
    if (name.empty() || component.version.empty()) {
      continue;
    }
    // Of two for one place the kernel writes the last one last.
    const auto same = std::ranges::find(versions, name, &NamedVersion::name);
    if (same != versions.end()) {
      same->value = component.version;
    } else {
      versions.push_back({std::string(name), component.version});
    }
  }
  return versions;
}

// Returns the version of that name that the adapter has; empty where it is not known. Where the
// driver does not tell it of the flash, what runs is the best that is known of that.
std::string_view versionAtHand(std::span<const FirmwareVersions> versions, std::string_view name) {
  const auto found = std::ranges::find(versions, name, &FirmwareVersions::name);
  if (found == versions.end()) {
    return {};
  }
  return found->tellsStored() ? found->stored : found->running;
}

std::optional<Preparation> checkVersions(const FirmwareTarget& target,
                                         const std::vector<NamedVersion>& versions) {
  for (const NamedVersion& version : versions) {
    const std::string_view held = versionAtHand(target.versions, version.name);
    if (!held.empty() && compareVersions(version.value, held) < 0) {
      return refuse(PrepareStatus::Downgrade, version.name + " " + version.value +
                                                  " of the file is older than " +
                                                  std::string(held) + " of the adapter");
    }
  }
  return std::nullopt;
}

Preparation preparePackage(const FirmwareTarget& target, ConstBytes file,
                           std::span<std::uint8_t> buffer, const Types& types) {
  const PldmPackage package = parsePldmPackage(file);
  const std::vector<PldmRom> roms = findOptionRoms(package, file);
  if (auto refusal = checkSoundness(package, roms)) {
    return *refusal;
  }
  if (auto refusal = checkFormat(target, FirmwareFormat::PldmPackage)) {
    return *refusal;
  }
  const PldmRecord* const record = findRecord(package, target.ids);
  if (auto refusal = checkRecord(target, package, record)) {
    return *refusal;
  }
  if (auto refusal = checkUpdatable(target)) {
    return *refusal;
  }
  if (auto refusal = checkTypes(typesFor(*record, roms), types)) {
    return copyWhole(file, buffer, *refusal);
  }
  if (auto refusal = checkVersions(target, versionsFor(*target.driver, package, *record))) {
    return copyWhole(file, buffer, *refusal);
  }
  return copyWhole(file, buffer);
}

// ---- option ROMs ----

std::set<std::string> devicesOf(const RomChain& chain) {
  std::set<std::string> devices;
  for (const OptionRomImage& image : chain.images) {
    devices.insert(describeIds({image.vendor, image.device, 0, 0}));
  }
  return devices;
}

std::string reasonOf(const FirmwareTarget& target, const AdapterFacts& facts,
                     const ImageSelection& selection, const RomChain& chain, const Types& types) {
  if (selection.older) {
    const std::string type(firmwareTypeName(selection.older->type));
    return type + " " + selection.older->version.toString() + " of the file is older than " +
           selection.older->installed.toString() + " of the adapter";
  }
  const std::set<FirmwareType> offered = typesOf(firmwareOf(facts, chain));
  if (const auto refusal = checkTypes(offered, types)) {
    return refusal->reason;
  }
  if (!target.isRomKnown) {
    return "the adapter's option ROM cannot be read, so that the types of its images are not known";
  }
  return "the file's images for the adapter are " + namesOf(offered) + ", and the adapter has " +
         namesOf(typesOf(firmwareOf(facts, parseRomChain(target.rom))));
}

Preparation prepareOptionRom(const FirmwareTarget& target, ConstBytes file,
                             std::span<std::uint8_t> buffer, const Types& types) {
  const RomChain chain = parseRomChain(file);
  if (!chain.isValid()) {
    return refuse(PrepareStatus::InvalidImage,
                  "the option ROM is damaged: " + chain.defect->toString());
  }
  if (auto refusal = checkFormat(target, FirmwareFormat::OptionRom)) {
    return *refusal;
  }
  const AdapterFacts facts{target.ids.vendor, target.ids.device, target.whyNotUpdatable.empty()};
  if (checkAdapter(chain, facts) == PrepareStatus::NotForAdapter) {
    return refuseOtherDevices(target, devicesOf(chain));
  }
  if (auto refusal = checkUpdatable(target)) {
    return *refusal;
  }
  const ImageSelection selection = selectImages(chain, parseRomChain(target.rom), facts, types);
  const auto size = copyImages(file, selection.images, buffer);
  if (!size) {
    return refuse(PrepareStatus::InternalFault,
                  "the images that are asked for cannot be cut out of the file's chain");
  }
  if (selection.status == PrepareStatus::Ok) {
    return {PrepareStatus::Ok, *size};
  }
  return {selection.status, *size, reasonOf(target, facts, selection, chain, types)};
}

// ---- what says nothing of itself ----

// The driver hands such a file to the adapter, which alone knows what it is.
Preparation prepareOpaque(const FirmwareTarget& target, FirmwareFormat format, ConstBytes file,
                          std::span<std::uint8_t> buffer, const Types& types) {
  if (file.empty()) {
    return refuse(PrepareStatus::InvalidImage, "the file is empty");
  }
  if (format == FirmwareFormat::Unknown && !takes(*target.driver, format)) {
    return refuse(PrepareStatus::InvalidImage, "the file is of no known firmware format");
  }
  if (auto refusal = checkFormat(target, format)) {
    return *refusal;
  }
  if (auto refusal = checkTrust(target)) {
    return *refusal;
  }
  if (auto refusal = checkUpdatable(target)) {
    return *refusal;
  }
  if (auto refusal = checkTypes({}, types)) {
    refusal->reason = "the file does not say which types its images have";
    return copyWhole(file, buffer, *refusal);
  }
  return copyWhole(file, buffer);
}

// ---- comparisons ----

ImageComparison compareRoms(const FirmwareTarget& target, ConstBytes image) {
  return compareImages({target.ids.vendor, target.ids.device, true}, image, target.rom);
}

bool isErased(const FirmwareTarget& target, std::string_view name) {
  const auto known = std::ranges::find(target.versions, name, &FirmwareVersions::name);
  return known != target.versions.end() && known->isErased;
}

ImageComparison compareVersionsOf(const FirmwareTarget& target, const FlashPlan& plan) {
  ImageComparison result = ImageComparison::Unknown;
  for (const NamedVersion& version : plan.versions) {
    if (isErased(target, version.name)) {
      return ImageComparison::Newer;  // any version is, than a half of one
    }
    const std::string_view held = versionAtHand(target.versions, version.name);
    if (held.empty()) {
      continue;
    }
    if (compareVersions(version.value, held) > 0) {
      return ImageComparison::Newer;
    }
    result = ImageComparison::SameVersion;
  }
  return result;
}

}  // namespace

Preparation prepareFirmware(const FirmwareTarget& target, ConstBytes file,
                            std::span<std::uint8_t> buffer, const Types& types) {
  switch (const FirmwareFormat format = firmwareFormatOf(file)) {
    case FirmwareFormat::PldmPackage:
      return preparePackage(target, file, buffer, types);
    case FirmwareFormat::OptionRom:
      return prepareOptionRom(target, file, buffer, types);
    case FirmwareFormat::Unknown:
    case FirmwareFormat::Mfa2:
    case FirmwareFormat::BnxtPart:
    case FirmwareFormat::Hinic:
    case FirmwareFormat::QedNvm:
      return prepareOpaque(target, format, file, buffer, types);
  }
  return refuse(PrepareStatus::InternalFault, "the file's format has no check");
}

ImageComparison compareFirmware(const FirmwareTarget& target, ConstBytes file) {
  FileBytes image(file.size());
  const Preparation preparation = prepareFirmware(target, file, image.writable(), {});
  if (preparation.status != PrepareStatus::Ok) {
    return comparisonOf(preparation.status);
  }
  if (firmwareFormatOf(file) == FirmwareFormat::OptionRom) {
    return compareRoms(target, image.view().first(preparation.filled));
  }
  return compareVersionsOf(target, planFlash(target, file));
}

FlashPlan planFlash(const FirmwareTarget& target, ConstBytes file) {
  if (firmwareFormatOf(file) != FirmwareFormat::PldmPackage) {
    return {file.size(), {}};
  }
  const PldmPackage package = parsePldmPackage(file);
  const PldmRecord* const record = findRecord(package, target.ids);
  if (record == nullptr) {
    return {};
  }
  FlashPlan plan{0, versionsFor(*target.driver, package, *record)};
  for (const std::size_t component : record->components) {
    plan.bytes += package.components[component].size;
  }
  return plan;
}

}  // namespace ma
