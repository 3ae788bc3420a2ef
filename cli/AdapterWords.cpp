#include "cli/AdapterWords.h"

#include "Utils/FirmwareTypes.h"
#include "Utils/Format.h"
#include "client/Identities.h"

namespace cli {
namespace {

constexpr unsigned kShownDigestBits = 32;

std::string describeImage(const ma::AdapterComponent& component) {
  const auto shownDigest = static_cast<unsigned>(component.digest >> kShownDigestBits);
  std::string text = std::string(utils::firmwareTypeName(component.type)) + " " +
                     component.version.toString() + utils::format(" (%08x)", shownDigest);
  if (!component.isForAdapter) {
    text += " for " + toIdText(component.vendor) + ":" + toIdText(component.device);
  }
  return text;
}

}  // namespace

std::string_view bootTypeName(ma::BootType type) {
  switch (type) {
    case ma::BootType::None:
      return "none";
    case ma::BootType::Pxe:
      return "PXE";
    case ma::BootType::Iscsi:
      return "iSCSI";
    case ma::BootType::Fcoe:
      return "FCoE";
    case ma::BootType::Uefi:
      return "UEFI";
  }
  return "unknown";
}

std::string_view comparisonName(ma::ImageComparison comparison) {
  switch (comparison) {
    case ma::ImageComparison::NotForAdapter:
      return client::kNotForAdapter;
    case ma::ImageComparison::NotUpdatable:
      return "not updatable";
    case ma::ImageComparison::TypesDiffer:
      return "other types";
    case ma::ImageComparison::Older:
      return "older";
    case ma::ImageComparison::SameVersion:
      return "same version";
    case ma::ImageComparison::SameContent:
      return "same";
    case ma::ImageComparison::Newer:
      return "newer";
    case ma::ImageComparison::Unknown:
      break;
  }
  return "unknown";
}

std::string toIdText(std::uint16_t id) {
  return utils::format("%04x", static_cast<unsigned>(id));
}

std::string toDeviceText(const ma::AdapterListing& adapter) {
  return toIdText(adapter.vendor) + ":" + toIdText(adapter.device);
}

std::string toDigestText(std::uint64_t digest) {
  return utils::format("%016llx", static_cast<unsigned long long>(digest));
}

std::string describeImages(const std::vector<ma::AdapterComponent>& components) {
  std::string text;
  for (const ma::AdapterComponent& component : components) {
    text += (text.empty() ? "" : ", ") + describeImage(component);
  }
  return text;
}

std::string describeVersions(const ma::FirmwareVersions& versions) {
  std::string text = versions.name;
  if (!versions.running.empty()) {
    text += " " + versions.running;
  }
  if (!versions.stored.empty() && versions.stored != versions.running) {
    text += (versions.running.empty() ? " stored " : ", stored ") + versions.stored;
  }
  return text;
}

bool isWaiting(const ma::FirmwareVersions& versions) {
  return !versions.stored.empty() && !versions.running.empty() &&
         versions.stored != versions.running;
}

client::Value textOrNull(const std::string& text) {
  return text.empty() ? client::Value() : client::Value(text);
}

}  // namespace cli
