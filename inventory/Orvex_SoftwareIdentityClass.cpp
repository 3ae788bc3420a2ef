#include "inventory/Orvex_SoftwareIdentityClass.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Utils/Format.h"
#include "inventory/ReleaseDate.h"
#include "inventory/VersionNumbers.h"
#include "midapi/MidApi.h"
#include "platform/Texts.h"

namespace {

using inventory::AdapterSoftware;
using inventory::FirmwareFilePtr;

constexpr utils::LogSource kLog{"Orvex_SoftwareIdentity"};
constexpr std::uint16_t kFirmware = 10;       // DMTF CIM_SoftwareIdentity.Classifications
constexpr std::uint16_t kNoResourceType = 2;  // ExtendedResourceType "Not Applicable"
// What an IdentityInfoValue is.
constexpr const char* kPciDevice = "Orvex:PCIDevice";
constexpr const char* kDigest = "Orvex:Digest";

std::string toDeviceText(std::uint16_t vendor, std::uint16_t device) {
  return utils::format("%04x:%04x", static_cast<unsigned>(vendor), static_cast<unsigned>(device));
}

// As packages that are for a subsystem alone are described, see ma::FirmwareDescription.
std::string toDeviceText(const ma::AdapterListing& adapter) {
  std::string text = toDeviceText(adapter.vendor, adapter.device);
  if (adapter.subsystemVendor != 0) {
    text += " sub " + toDeviceText(adapter.subsystemVendor, adapter.subsystemDevice);
  }
  return text;
}

void addIdentityInfo(Orvex_SoftwareIdentity& software, const char* type, const std::string& value) {
  software.IdentityInfoType.addValue(type);
  software.IdentityInfoValue.addValue(value);
}

void addDigest(Orvex_SoftwareIdentity& software, std::uint64_t digest) {
  addIdentityInfo(software, kDigest,
                  utils::format("%016llx", static_cast<unsigned long long>(digest)));
}

void setVersion(Orvex_SoftwareIdentity& software, const std::string& version) {
  software.VersionString.setValue(version);
  inventory::setVersionNumbers(software, version);
}

void setSoftwareValues(Orvex_SoftwareIdentity& software, const std::string& instanceId,
                       const std::string& caption) {
  software.InstanceID.setValue(instanceId);
  core::markKeys(software);
  software.Name.setValue(software.getIdentity());
  software.Caption.setValue(caption);
  software.Description.setValue(caption);
  software.ElementName.setValue(caption);
  software.Classifications.setValue({kFirmware});
  software.IsEntity.setValue(1);
  software.ImageKind.setValue(software.getImageKind());
}

// A firmware image that can be installed.
class ImageFile final : public AdapterSoftware {
 public:
  explicit ImageFile(FirmwareFilePtr file) : m_file(std::move(file)) {
    setSoftwareValues(
        *this, "Orvex:FirmwareFile:" + m_file->path,
        "Firmware image " + platform::toShownText(platform::toPath(m_file->path).filename()));
    describe(m_file->description);
  }

  [[nodiscard]] std::string getIdentity() const override { return m_file->path; }
  [[nodiscard]] std::uint32_t getImageKind() const override { return kFirmwareImage; }

  [[nodiscard]] FirmwareFilePtr getFile() const override { return m_file; }

 private:
  void describe(const ma::FirmwareDescription& file);

  const FirmwareFilePtr m_file;
};

void ImageFile::describe(const ma::FirmwareDescription& file) {
  std::vector<std::string> types;
  for (const utils::FirmwareVersionInfo& image : file.images) {
    types.emplace_back(utils::firmwareTypeName(image.type));
  }
  setVersion(*this, file.version);
  TargetTypes.setValue(types);
  ExtendedResourceType.setValue(kNoResourceType);
  for (const std::string& device : file.devices) {
    addIdentityInfo(*this, kPciDevice, device);
  }
  addDigest(*this, file.digest);
  if (const auto released = inventory::readReleaseDate(file.releaseTime)) {
    ReleaseDate.setValue(*released);
  }
}

// A component in the flash of an adapter. Its place there tells it from others of its type.
class InstalledComponent final : public AdapterSoftware {
 public:
  InstalledComponent(std::string adapter, std::size_t place, const ma::AdapterComponent& component)
      : m_adapter(std::move(adapter)), m_identity(m_adapter + "/" + std::to_string(place)) {
    const std::string type(utils::firmwareTypeName(component.type));
    setSoftwareValues(*this, "Orvex:InstalledFirmware:" + m_identity,
                      "Installed " + type + " of adapter " + m_adapter);
    setVersion(*this, component.version.toString());
    TargetTypes.setValue({type});
    addIdentityInfo(*this, kPciDevice, toDeviceText(component.vendor, component.device));
    addDigest(*this, component.digest);
  }

  [[nodiscard]] std::string getIdentity() const override { return m_identity; }
  [[nodiscard]] std::uint32_t getImageKind() const override { return kInstalledComponent; }

  [[nodiscard]] std::string getAdapter() const override { return m_adapter; }
  [[nodiscard]] std::string_view getRelation() const override { return "installed"; }

 private:
  const std::string m_adapter;
  const std::string m_identity;
};

// Which version a driver's identity stands for.
struct VersionKind {
  std::string ma::FirmwareVersions::*version;
  const char* instance;  // what its InstanceID begins with
  const char* caption;
  std::string_view relation;
};
constexpr VersionKind kVersionKinds[] = {
    {&ma::FirmwareVersions::running, "Orvex:RunningFirmware:", "Running ", "running"},
    {&ma::FirmwareVersions::stored, "Orvex:StoredFirmware:", "Stored ", "stored"}};

// What a driver says of one part of its adapter's firmware: what works now, or what takes effect
// later.
class DriverFirmware final : public AdapterSoftware {
 public:
  DriverFirmware(const ma::AdapterListing& adapter, const ma::FirmwareVersions& versions,
                 const VersionKind& kind)
      : m_adapter(adapter.pci), m_name(versions.name), m_relation(kind.relation) {
    setSoftwareValues(*this, kind.instance + getIdentity(),
                      kind.caption + m_name + " of adapter " + m_adapter);
    setVersion(*this, versions.*kind.version);
    addIdentityInfo(*this, kPciDevice, toDeviceText(adapter));
  }

  [[nodiscard]] std::string getIdentity() const override { return m_adapter + "/" + m_name; }
  [[nodiscard]] std::uint32_t getImageKind() const override { return kInstalledComponent; }

  [[nodiscard]] std::string getAdapter() const override { return m_adapter; }
  [[nodiscard]] std::string_view getRelation() const override { return m_relation; }

 private:
  const std::string m_adapter;
  const std::string m_name;
  const std::string_view m_relation;
};

}  // namespace

Orvex_SoftwareIdentityClass::Orvex_SoftwareIdentityClass(inventory::FirmwareFiles& files,
                                                         OutlineAdapters outlineAdapters)
    : InstanceProvider(Orvex_SoftwareIdentity::kClassName,
                       {kLog, "Orvex_SoftwareIdentityClass::getInstances", "getInstances",
                        "SoftwareIdentity::getInstances"}),
      m_files(files),
      m_outlineAdapters(outlineAdapters) {}

void Orvex_SoftwareIdentityClass::refresh() {
  instances().clear();
  for (const FirmwareFilePtr& file : m_files.find()) {
    instances().add(new ImageFile(file));
  }
  for (const ma::AdapterListing& adapter : m_outlineAdapters(ma::OutlineDepth::Flash)) {
    addComponents(adapter);
    addDriverFirmware(adapter);
  }
}

void Orvex_SoftwareIdentityClass::addComponents(const ma::AdapterListing& adapter) {
  if (!adapter.flashDefect.empty()) {
    return;  // no image of a damaged chain is installed
  }
  std::size_t place = 0;
  for (const ma::AdapterComponent& component : adapter.components) {
    if (component.isForAdapter && component.type != utils::FirmwareType::None) {
      instances().add(new InstalledComponent(adapter.pci, place, component));
      ++place;
    }
  }
}

void Orvex_SoftwareIdentityClass::addDriverFirmware(const ma::AdapterListing& adapter) {
  for (const ma::FirmwareVersions& versions : adapter.versions) {
    for (const VersionKind& kind : kVersionKinds) {
      if (!(versions.*kind.version).empty()) {
        instances().add(new DriverFirmware(adapter, versions, kind));
      }
    }
  }
}
